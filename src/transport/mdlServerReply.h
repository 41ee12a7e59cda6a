// The one place where server replies are judged, and the two request routines that join
// the raw exchange to that judgement.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/Xml.h"

namespace morvane {

namespace forms {
class Form;
}

// How the reply check asks for a new login once the server ended it: the session shows its
// dialog there. Kept on the process state for every later check; without one, the login just
// ends.
void SetLoginPrompt(std::function<void()> prompt);

// Flags and token of the reply's one system element; false for an empty or malformed
// reply, or one without exactly one of each.
bool ParseSystemNode(std::string_view reply, std::int32_t& flags, std::string& token);
// Sets the login state and the token from the reply and tells the user of failures;
// 1 when flags is 1, else 0. An expired token opens the login dialog.
std::int32_t CheckServerReply(std::string_view reply);
// The reply text when the reply check gave 1, else "".
std::string SendRequest(std::string_view path, std::string_view postData);

// A judged reply with the document the reply check parsed, so that its reader need not
// parse a large reply a second time. Both are empty unless the check gave 1; the document
// is also empty where the reply came by another way than SendRequestJudged.
struct JudgedReply {
    std::string text;
    std::unique_ptr<platform::XmlDocument> document;
};
// SendRequest, keeping the parsed document.
JudgedReply SendRequestJudged(std::string_view path, std::string_view postData);
// The same behind the progress form (none when the object usage option is 1).
std::string SendRequestProgress(std::string_view path, std::string_view postData,
                                std::string_view msg, forms::Form* owner);
// Logs in with typed values, changing nothing of the session: true for flags 1.
bool TestConnection(std::string_view url, std::string_view contractNo, std::string_view userId,
                    std::string_view password);

namespace msg {
inline constexpr const char* kCommFailTitle = "サーバー通信エラー";
inline constexpr const char* kCommFailNoNetwork =
    "データの通信に失敗しました。　\r\n"
    "インターネットに接続されているかご確認ください。　\r\n"
    "また、ソラスタを再起動してみてください。　";
inline constexpr const char* kCommFail = "データの通信に失敗しました。　";
inline constexpr const char* kLockFailTitle = "サーバーデータの更新";
inline constexpr const char* kLockFail =
    "データをロックできないため、サーバーのデータを更新できませんでした。　\r\n"
    "他のユーザーが同じデータを編集している可能性があります。";
}  // namespace msg

}  // namespace morvane
