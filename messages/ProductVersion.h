#pragma once

#include "messages/Codec.h"

namespace Messages {

// What product the main process is.
struct ProductVersion {
  char m_productname[257] = "";
  char m_productversion[17] = "";
  char m_productbuild[17] = "";
  char m_productcopyright[129] = "";
};

template <>
struct Description<ProductVersion> {
  static constexpr char kDecoder[] = "DecodeStruct_ProductVersion";
  static constexpr Field kRows[] = {
      Text<&ProductVersion::m_productname>("productname"),
      Text<&ProductVersion::m_productversion>("productversion"),
      Text<&ProductVersion::m_productbuild>("productbuild"),
      Text<&ProductVersion::m_productcopyright>("productcopyright"),
  };
};

inline bool DecodeStruct_ProductVersion(const Vask::JsonObject& object, ProductVersion& record) {
  return Decode(object, record);
}

}  // namespace Messages
