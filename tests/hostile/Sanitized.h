#pragma once

namespace Hostile {

// Whether a sanitizer is at work: its own memory drowns the module's, and
// everything takes several times as long.
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
inline constexpr bool kSanitized = true;
#else
inline constexpr bool kSanitized = false;
#endif
#else
inline constexpr bool kSanitized = false;
#endif

}  // namespace Hostile
