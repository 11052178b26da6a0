#include "linuxunit/machine/checkedJson.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <vector>

namespace linuxunit {

using nlohmann::json;

namespace {

/** Lines of all values of a text, by their place in it, "/adc/rails/0"; null places are the root.
 */
using Lines = std::map<std::string, unsigned>;

/** Counts the lines that a parser has taken from a text. */
struct CountingIterator {
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char *;
    using reference = const char &;

    const char *at;
    unsigned *line;
    bool *isAtBreak; ///< the last character taken was a line's end

    reference operator*() const { return *at; }
    CountingIterator &operator++()
    {
        *isAtBreak = *at == '\n';
        *line += *isAtBreak ? 1U : 0U;
        ++at;
        return *this;
    }
    bool operator==(const CountingIterator &other) const { return at == other.at; }
    bool operator!=(const CountingIterator &other) const { return at != other.at; }
};

/** Notes the line of each value, and finds keys that stand there twice. */
class LineReader final : public nlohmann::json_sax<json>
{
public:
    LineReader(unsigned &presentLine, bool &breakSeen)
        : line(presentLine)
        , isAtBreak(breakSeen)
    {}

    Lines lines;

    bool null() override { return value(); }
    bool boolean(bool /*unused*/) override { return value(); }
    bool number_integer(number_integer_t /*unused*/) override { return number(); }
    bool number_unsigned(number_unsigned_t /*unused*/) override { return number(); }
    bool number_float(number_float_t /*unused*/, const string_t & /*unused*/) override
    {
        return number();
    }
    bool string(string_t & /*unused*/) override { return value(); }
    bool binary(binary_t & /*unused*/) override { return value(); }
    bool start_object(std::size_t /*unused*/) override
    {
        value();
        places.push_back({lastPlace, {}, {}, -1});
        return true;
    }
    bool key(string_t &name) override
    {
        auto &place = places.back();
        if (!place.keys.insert(name).second)
            throw JsonFault{line, "\"" + name + "\" stands there twice"};
        place.key = name;
        return true;
    }
    bool end_object() override
    {
        places.pop_back();
        return true;
    }
    bool start_array(std::size_t /*unused*/) override
    {
        value();
        places.push_back({lastPlace, {}, {}, 0});
        return true;
    }
    bool end_array() override
    {
        places.pop_back();
        return true;
    }
    bool parse_error(std::size_t /*unused*/, const std::string & /*unused*/,
        const nlohmann::detail::exception &error) override
    {
        // "[json.exception.parse_error.101] parse error at line 3, column 5: syntax error ..."
        std::string reason = error.what();
        const auto colon = reason.find(": ");
        throw JsonFault{line, colon == reason.npos ? reason : reason.substr(colon + 2)};
    }

private:
    struct Place {
        std::string path;
        std::set<std::string> keys;
        std::string key;
        int index; ///< of the next element; -1 in an object
    };

    bool value() { return note(line); }
    /** A number ends with the character behind it, which was taken too. */
    bool number() { return note(isAtBreak ? line - 1 : line); }
    bool note(unsigned where)
    {
        lastPlace.clear();
        if (!places.empty()) {
            auto &place = places.back();
            lastPlace =
                place.path + "/" + (place.index < 0 ? place.key : std::to_string(place.index++));
        }
        lines[lastPlace] = where;
        return true;
    }

    unsigned &line;
    bool &isAtBreak;
    std::vector<Place> places;
    std::string lastPlace;
};

/** One text against one schema. */
class Checker
{
public:
    Checker(const json &wholeSchema, const Lines &allLines)
        : root(wholeSchema)
        , lines(allLines)
    {}

    void check(const json &value, const json &given, const std::string &path) const
    {
        const json &schema = resolved(given);
        if (schema.contains("anyOf"))
            return checkAnyOf(value, schema["anyOf"], path);
        checkType(value, schema, path);
        if (schema.contains("enum") &&
            std::find(schema["enum"].begin(), schema["enum"].end(), value) == schema["enum"].end())
            fail(path, "is none of " + schema["enum"].dump());
        if (value.is_number())
            checkNumber(value, schema, path);
        else if (value.is_object())
            checkObject(value, schema, path);
        else if (value.is_array())
            checkArray(value, schema, path);
        else if (value.is_string())
            checkString(value.get_ref<const std::string &>(), schema, path);
    }

private:
    [[noreturn]] void fail(const std::string &path, const std::string &reason) const
    {
        const auto found = lines.find(path);
        const auto line = found == lines.end() ? 1U : found->second;
        throw JsonFault{line, (path.empty() ? "the file" : path.substr(1)) + " " + reason};
    }

    const json &resolved(const json &schema) const
    {
        if (!schema.contains("$ref"))
            return schema;
        return root.at(json::json_pointer(schema["$ref"].get<std::string>().substr(1)));
    }

    void checkAnyOf(const json &value, const json &choices, const std::string &path) const
    {
        for (const auto &choice : choices) {
            const auto &schema = resolved(choice);
            if (schema.contains("const")) {
                if (value == schema["const"])
                    return;
            } else if (&choice == &choices.back() || looksLike(value, schema)) {
                return check(value, choice, path);
            }
        }
    }

    /** Whether it is meant to be one of these: what is wrong with it then is told by that choice.
     */
    static bool looksLike(const json &value, const json &schema)
    {
        static const json none = json::array();
        const auto &required = schema.contains("required") ? schema["required"] : none;
        return isOfType(value, schema["type"]) &&
               std::all_of(required.begin(), required.end(),
                   [&](const json &name) { return value.contains(name.get<std::string>()); });
    }

    static bool isOfType(const json &value, const std::string &type)
    {
        if (type == "integer")
            return value.is_number_integer();
        if (type == "number")
            return value.is_number();
        return type == value.type_name();
    }

    void checkType(const json &value, const json &schema, const std::string &path) const
    {
        if (!schema.contains("type"))
            return;
        const std::string type = schema["type"];
        if (!isOfType(value, type))
            fail(path, "is no " + type);
    }

    void checkString(const std::string &value, const json &schema, const std::string &path) const
    {
        if (schema.contains("minLength") && value.empty())
            fail(path, "is empty");
        // Of patterns only what begins so, "^/sys/" say.
        if (schema.contains("pattern")) {
            const auto begin = schema["pattern"].get<std::string>().substr(1);
            if (!value.starts_with(begin))
                fail(path, "doesn't begin with " + begin);
        }
    }

    void checkNumber(const json &value, const json &schema, const std::string &path) const
    {
        const auto number = value.get<double>();
        if (schema.contains("minimum") && number < schema["minimum"].get<double>())
            fail(path, "is below " + schema["minimum"].dump());
        if (schema.contains("maximum") && number > schema["maximum"].get<double>())
            fail(path, "is above " + schema["maximum"].dump());
    }

    void checkObject(const json &value, const json &schema, const std::string &path) const
    {
        static const json none = json::object();
        const auto &properties = schema.contains("properties") ? schema["properties"] : none;
        for (const auto &[name, child] : value.items()) {
            const auto place = std::string(path).append("/").append(name);
            if (properties.contains(name))
                check(child, properties[name], place);
            else if (schema.contains("additionalProperties"))
                fail(place, "is unknown here");
        }
        if (!schema.contains("required"))
            return;
        for (const auto &name : schema["required"]) {
            if (!value.contains(name.get<std::string>()))
                fail(path, "lacks " + name.dump());
        }
    }

    void checkArray(const json &value, const json &schema, const std::string &path) const
    {
        if (schema.contains("maxItems") && value.size() > schema["maxItems"].get<std::size_t>())
            fail(path, "has more than " + schema["maxItems"].dump() + " elements");
        for (std::size_t i = 0; schema.contains("items") && i < value.size(); ++i)
            check(value[i], schema["items"], path + "/" + std::to_string(i));
    }

    const json &root;
    const Lines &lines;
};

} // namespace

json parseChecked(const std::string &text, const json &schema)
{
    unsigned line = 1;
    bool isAtBreak = false;
    const CountingIterator begin{text.data(), &line, &isAtBreak};
    const CountingIterator end{text.data() + text.size(), &line, &isAtBreak};
    LineReader reader(line, isAtBreak);
    json::sax_parse(begin, end, &reader);
    auto parsed = json::parse(text);
    Checker(schema, reader.lines).check(parsed, schema, {});
    return parsed;
}

} // namespace linuxunit
