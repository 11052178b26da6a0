#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace linuxunit {

/** A text that isn't the JSON that it should be. */
struct JsonFault {
    unsigned line; ///< from 1
    std::string reason;
};

/**
 * Parses a text and holds it to a schema: JSON Schema as far as `type`, `properties`, `required`,
 * `additionalProperties: false`, `items`, `maxItems`, `enum`, `minimum`, `maximum`, `minLength`,
 * `anyOf` of a `const: false` and one object, and `$ref` to `#/$defs/` go. Throws a JsonFault for
 * the first thing that is wrong, a key that stands there twice too.
 */
nlohmann::json parseChecked(const std::string &text, const nlohmann::json &schema);

} // namespace linuxunit
