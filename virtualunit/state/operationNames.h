#pragma once

#include <string>
#include <vector>

namespace virtualunit {

/** Names of all operations of the contract that return a code, in its order. */
const std::vector<std::string> &operationNames();
/** Throws a Failure for any other name. */
const std::string &checkedOperation(const std::string &operation);

} // namespace virtualunit
