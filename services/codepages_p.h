// services/codepages_p.h: the raw 128-entry tables behind codepages.h.
#pragma once

namespace plx::codepages::detail {

extern const char16_t kCp437[128];
extern const char16_t kCp737[128];
extern const char16_t kCp850[128];
extern const char16_t kCp852[128];
extern const char16_t kCp857[128];
extern const char16_t kCp861[128];
extern const char16_t kCp865[128];
extern const char16_t kCp866[128];
extern const char16_t kCp874[128];
extern const char16_t kCp1250[128];
extern const char16_t kCp1251[128];
extern const char16_t kCp1253[128];
extern const char16_t kCp1254[128];
extern const char16_t kCp1255[128];
extern const char16_t kCp1256[128];
extern const char16_t kCp1257[128];

} // namespace plx::codepages::detail
