#pragma once

#include <string>

namespace devicetools {

/** A device library to begin with: one C source with every function of the contract, the header's
 *  comment above each. It keeps the contract, and answers "not supported" to everything. */
std::string skeleton();

} // namespace devicetools
