# What a hostile or broken server sends leaves the rest intact.

served_after() {
  next_version=$((${next_version:-0} + 1))
  tell set ProductVersion "after-$next_version"
  tell send Product
  expect_eventually "$1: the next good frame is served" "\"after-$next_version\"" \
    read_variable ProductVersion
}
before=$(received_traps | wc -l)

tell frame '{"name":"SNMPmessage","id":0,"data":'
served_after 'a frame that is cut off'
tell frame 'hello'
served_after 'a frame that is no JSON'
tell message NoSuchMessage '{}'
served_after 'a message that nobody knows'
tell set StreamsCount 1025
tell send Streams
served_after 'a count over its range'
expect 'and the count stays as it was' "$(read_variable StreamsCount)" 1024
expect_eventually 'and the log says why' 1 log_count \
  'Error: DecodeStruct_Streams: m_Count expected to be less than 1024. It is 1025.' 
tell set StreamsCount 10
tell split '*' send Streams
expect_eventually 'a frame that comes byte by byte is served' 10 read_variable StreamsCount
expect 'none of this raised a trap or cost the link' "$(trap_names "$before")" ''

tell raw 'hello'
expect_eventually 'what is no frame costs the link, which comes back and asks again' \
  'TrapSoftwareLinkDown TrapSoftwareLinkUp' trap_names "$before"
served_after 'what is no frame'
