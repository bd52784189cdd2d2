#include "tests/messages/ProgramRecords.h"

#include "tests/messages/ListReading.h"

namespace Messages::Tests {

namespace {

std::string Dump(const ProgramStream::AAC& aac) {
  std::string text = "AAC(";
  for (const auto& [key, codec] : Elements(aac.m_codecs)) {
    text += key + ":" + std::to_string(codec->m_encodebitratekbps) + "/" +
            std::to_string(codec->m_encodechannels) + " ";
  }
  return text + "options " + std::to_string(aac.m_options.m_tag) + ")";
}

std::string Dump(const ProgramStream::instance& instance) {
  switch (instance.m_tag) {
    case ProgramStream::instance::kMP3:
      return "MP3(" + std::to_string(instance.m_MP3.m_encodebitratekbps) + "/" +
             std::to_string(instance.m_MP3.m_encodechannels) + ")";
    case ProgramStream::instance::kAAC:
      return Dump(instance.m_AAC);
    default:
      return "tag " + std::to_string(instance.m_tag);
  }
}

}  // namespace

std::string Dump(const CreateProgramMP3& program) {
  std::string text = "gain " + std::to_string(program.m_inputgainl) + " fade " +
                     std::to_string(program.m_fade_duration);
  for (const auto& [key, element] : Elements(program.m_streams)) {
    text += " " + key + "=" + element->m_Stream.m_name + " " + Dump(element->m_Stream.m_instance);
  }
  return text;
}

}  // namespace Messages::Tests
