#include "settings/ApplicationInfo.h"

namespace valdrix {

std::string_view applicationInfo::websiteURL() {
  std::string_view url = VALDRIX_WEBSITE;
  while (url.ends_with('/')) url.remove_suffix(1);
  return url;
}

std::string applicationInfo::versionURL() { return std::string(websiteURL()) + "/version.txt"; }

}  // namespace valdrix
