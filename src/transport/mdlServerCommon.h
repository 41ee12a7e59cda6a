// The raw exchange with the server: the base URL from the settings, one POST of a form
// body, and the reply text as it came, not judged.
#pragma once

#include <string>
#include <string_view>

#include "platform/Http.h"
#include "transport/TransportRun.h"

namespace morvane {

// "https://" + server name + "/".
std::string GetServerBaseURL();
// Read from the settings the first time in a process, never again; trimmed on every call.
std::string GetServerName();
std::string GetContractNo();
// The public sign-up page, opened in the browser and never posted to.
std::string GetSignupPageURL();

// POSTs the body to the base URL + path. A transport failure gives the empty text.
std::string PostToServer(std::string_view path, std::string_view postData);
// The same, under the name the login exchange calls it by.
std::string SendRequestRaw(std::string_view path, std::string_view postData);
// POSTs a login body to a whole URL, for a server name typed but not yet saved.
std::string PostConnectionTest(std::string_view url, std::string_view contractNo,
                               std::string_view userId, std::string_view password);
// encodeURI: every byte but letters, digits and - _ . ! ~ * ' ( ) ; , / ? : @ & = + $ #
// becomes %XX of its UTF-8 form.
std::string EncodeURIValue(std::string_view text);

// The headers every POST carries.
platform::HttpHeaders StandardHeaders();
// One POST with the standard headers plus extra ones, under the run's limits; for the file
// transfers.
platform::HttpReply PostWithHeaders(const std::string& url, const platform::HttpHeaders& extra,
                                    std::string_view body,
                                    std::size_t maxReplyBytes = kMaxXmlReplyBytes);

}  // namespace morvane
