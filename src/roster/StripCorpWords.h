// Customer names as the roster dialogs show them: without the words for a company form.
#pragma once

#include <string>
#include <string_view>

namespace morvane {

// Removes every company-form word ("株式会社", "㈱", "（有）" and the rest) in a fixed order.
std::string StripCorpWords(std::string_view name);

}  // namespace morvane
