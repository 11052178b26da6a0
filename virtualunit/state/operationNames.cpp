#include "virtualunit/state/operationNames.h"

#include "devicetools/contract.h"
#include "virtualunit/state/codes.h"

#include <algorithm>

namespace virtualunit {

const std::vector<std::string> &operationNames()
{
    static const auto *const names = [] {
        auto *all = new std::vector<std::string>;
        for (const auto &operation : contract::operations)
            all->emplace_back(operation.name);
        return all;
    }();
    return *names;
}

const std::string &checkedOperation(const std::string &operation)
{
    const auto &names = operationNames();
    if (std::find(names.begin(), names.end(), operation) == names.end())
        throw Failure{ValueOutOfRange, "There is no operation \"" + operation + "\"."};
    return operation;
}

} // namespace virtualunit
