// The starts of request bodies: name=value& pairs, values never escaped, ending in "&".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace morvane {

// "ID=<id>&token=<token>&", with the user ID and token read anew.
std::string UpperBody();
// "ID=<id>&token=<token>&CustomerID=<n>&"
std::string UpperCustomerBody(std::int32_t custId);
// "id=<id>&token=<token>&CustomerID=<n>&": the lower-case key of locks, flags, add, delete.
std::string LowerCustomerBody(std::int32_t custId);
// "id=<id>&token=<token>&MasterID=<n>&"
std::string LowerMasterBody(std::int32_t mastId);
// The customer body followed by "FileName=<name without folder>&".
std::string FileBody(std::int32_t custId, std::string_view fileName);
// Appends "name=value&".
void AppendField(std::string& body, std::string_view name, std::string_view value);

}  // namespace morvane
