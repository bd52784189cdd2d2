# Bad input from a hostile or broken server does not disturb later frames.

served_after() {
  next_version=$((${next_version:-0} + 1))
  tell set ProductVersion "after-$next_version"
  tell send Product
  expect_eventually "$1: the next good frame is processed" "\"after-$next_version\"" \
    read_variable ProductVersion
}
before=$(received_traps | wc -l)

tell frame '{"name":"SNMPmessage","id":0,"data":'
served_after 'a message that is cut off'
tell frame 'hello'
served_after 'a frame without JSON'
tell message NoSuchMessage '{}'
served_after 'an unknown message'
tell set StreamsCount 1025
tell send Streams
served_after 'a count above its range'
expect 'the count does not change' "$(read_variable StreamsCount)" 1024
expect_eventually 'the log gives the reason' 1 log_count \
  'Error: DecodeStruct_Streams: m_Count expected to be less than 1024. It is 1025.'
tell set StreamsCount 10
tell split '*' send Streams
expect_eventually 'a frame that arrives byte by byte is processed' 10 read_variable StreamsCount
expect 'none of these raised a trap or closed the link' "$(trap_names "$before")" ''

tell raw 'hello'
expect_eventually 'bytes that are no frame close the link; the agent connects and requests values again' \
  'TrapSoftwareLinkDown TrapSoftwareLinkUp' trap_names "$before"
served_after 'bytes that are no frame'
