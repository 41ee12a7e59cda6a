#include "session/mdlServerTime.h"

#include <array>
#include <filesystem>
#include <system_error>

#include "platform/FileServerClock.h"
#include "platform/Xml.h"
#include "state/ProcessState.h"
#include "transport/mdlServerCommon.h"
#include "transport/mdlServerConst.h"
#include "util/DateValue.h"

namespace morvane {
namespace {
constexpr int kSamples = 3;
constexpr int kMaxTries = 10;
constexpr double kQuick = 1.0 * DateValue::kOneSecond;
constexpr double kSlow = 5.0 * DateValue::kOneSecond;
}  // namespace

std::string GetXmlDateTime(std::string_view reply) {
    if (reply.empty()) return {};
    const auto doc = platform::XmlDocument::Load(reply);
    if (!doc) {
        forms::MessageBoxRequest box;
        box.text = "loadXML エラー";
        box.title = "GetXmlDateTime";
        box.icon = forms::MsgIcon::Exclamation;
        State().Toolkit().MessageBox(box);
        return {};
    }
    const platform::XmlNode root = doc->DocumentElement();
    if (!root) return {};
    const auto nodes = root.SelectNodesNoCase("datetime");
    return nodes.size() == 1 ? nodes[0].Text() : std::string();
}

double MeasureServerTimeOffset() {
    std::array<double, kSamples> slots{};
    int samples = 0;
    int tries = 0;
    double result = 0.0;
    bool decided = false;
    const platform::Clock& clock = State().Clock();
    while (samples < kSamples && tries < kMaxTries) {
        try {
            const double t0 = clock.Now().Days();
            const std::string reply = PostToServer(page::kGetTime, "");
            const double t1 = clock.Now().Days();
            if (const auto s = DateValue::Parse(GetXmlDateTime(reply))) {
                const double d = t1 - t0;
                const double offset = (t0 + t1) / 2.0 - s->Days();
                if (d <= kQuick) {
                    result = offset;
                    decided = true;
                    break;
                }
                if (d <= kSlow) slots[static_cast<size_t>(samples++)] = offset;
            }
        } catch (...) {
            // A failed try counts like a slow one.
        }
        ++tries;
    }
    if (!decided && samples > 0) result = (slots[0] + slots[1] + slots[2]) / samples;
    return result - DateValue::kOneSecond;
}

void UpdateServerTimeOffset() { State().inetServerTimeOffset = MeasureServerTimeOffset(); }

double MeasureDataFolderTimeOffset(std::string_view path) {
    try {
        const std::filesystem::path file{std::string(path)};
        std::error_code ec;
        if (!std::filesystem::exists(file, ec)) return 0.0;
        const std::filesystem::path folder = file.parent_path().empty() ? "." : file.parent_path();
        if (!platform::IsOnNetworkFileSystem(folder)) return 0.0;  // a local disk needs none
        const auto remote = platform::ProbeFileServerTime(folder);
        if (!remote) return 0.0;
        return State().Clock().Now().Days() - remote->Days();
    } catch (...) {
        return 0.0;
    }
}

void EnsureDataFolderTimeOffset(std::string_view localDb) {
    ProcessState& state = State();
    if (state.dataFolderOffsetMeasured) return;
    state.inetDataFolderTimeOffset = MeasureDataFolderTimeOffset(localDb);
    state.dataFolderOffsetMeasured = true;
}

}  // namespace morvane
