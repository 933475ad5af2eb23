#include "server/net/errorText.h"

namespace kelvora::server {

std::string errorText(error_code error) {
  namespace errc = boost::system::errc;
  struct Text {
    errc::errc_t code;
    const char* text;
  };
  static constexpr Text texts[] = {{errc::address_in_use, "Address already in use"},
                                   {errc::address_not_available, "Cannot assign requested address"},
                                   {errc::connection_aborted, "Software caused connection abort"},
                                   {errc::connection_reset, "Connection reset by peer"},
                                   {errc::host_unreachable, "No route to host"},
                                   {errc::network_down, "Network is down"},
                                   {errc::network_unreachable, "Network is unreachable"},
                                   {errc::no_buffer_space, "No buffer space available"},
                                   {errc::permission_denied, "Permission denied"},
                                   {errc::timed_out, "Connection timed out"},
                                   {errc::too_many_files_open, "Too many open files"}};
  for (const auto& [code, text] : texts) {
    if (error == code) return text;
  }
  return error.message();
}

}  // namespace kelvora::server
