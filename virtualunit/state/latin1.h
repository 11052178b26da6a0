#pragma once

#include <string>
#include <string_view>

namespace virtualunit {

/** Texts cross the contract in Latin-1 and are UTF-8 everywhere else. */
std::string fromLatin1(std::string_view text);
/** Characters that Latin-1 lacks throw a Failure. */
std::string toLatin1(std::string_view text);

} // namespace virtualunit
