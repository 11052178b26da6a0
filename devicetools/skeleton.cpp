#include "devicetools/skeleton.h"

#include "devicetools/contract.h"

#include <iterator>
#include <string_view>

namespace devicetools {

namespace {

constexpr std::size_t lineLength = 100;

constexpr const char *beginning = R"(/*
 * A device library for VornSettings, to be filled in. Every operation answers that the unit has no
 * such feature, which is what one that the unit really lacks goes on answering.
 *
 * gcc -std=c99 -shared -fPIC -o libVornAux2.so skeleton.c
 * x86_64-w64-mingw32-gcc -std=c99 -shared -o VornAux2.dll skeleton.c
 */

#ifdef _WIN32
#define VORNAUX2_API __declspec(dllexport)
#elif defined __GNUC__
#define VORNAUX2_API __attribute__((visibility("default")))
#endif

#include <VornAux2.h>

#include <stdlib.h>

/*
 * What a handle stands for. Each is used by one thread at a time, several at once by several: what
 * they share, such as a connection to the hardware, needs a lock.
 */
struct Device {
    int unused;
};

static void *createDevice(void)
{
    /* Null if there is no memory. Nobody looks: the operations have to answer a code then. */
    return calloc(1, sizeof(struct Device));
}

static void releaseDevice(void *device)
{
    free(device);
}

/*
 * Texts of the codes. Those with a meaning to the program are its own; all others are this
 * library's, to be numbered and named here.
 */
)";

/** The bodies of the functions that give texts, by their names. */
constexpr struct {
    std::string_view name;
    const char *body;
} textBodies[] = {
    {"deviceErrorText", R"(    switch (code) {
    case DEVICE_OK:
        return "No error";
    case DEVICE_NOT_SUPPORTED:
        return "Not supported by this unit or its firmware";
    case DEVICE_DATA_NOT_AVAILABLE:
        return "Not available at present";
    case DEVICE_AUTOMATIC_BACKLIGHT_RUNS:
        return "Not possible while the automatic backlight runs";
    default:
        return "Unknown error";
    }
)"},
    {"Diagnostics_startupReasonText", R"(    (void)reason;
    return "Unknown reason";
)"},
    {"Diagnostics_hwErrorText", R"(    return status == 0 ? "No error" : "Unknown error";
)"},
};

std::string commentOf(const char *comment)
{
    std::string text = "\n/** ";
    for (const char *letter = comment; *letter != '\0'; ++letter) {
        text += *letter;
        if (*letter == '\n')
            text += " *  ";
    }
    return text + " */\n";
}

/** A signature on as many lines as it needs. */
std::string wrapped(const std::string &signature)
{
    std::string text;
    std::string line;
    std::size_t begin = 0;
    while (begin < signature.size()) {
        auto end = signature.find(", ", begin);
        end = end == signature.npos ? signature.size() : end + 2;
        const auto piece = signature.substr(begin, end - begin);
        if (line.size() + piece.size() > lineLength) {
            line.erase(line.find_last_not_of(' ') + 1);
            text += line + '\n';
            line = "    ";
        }
        line += piece;
        begin = end;
    }
    return text + line + '\n';
}

std::string functionOf(const std::string &signature, const std::string &body)
{
    return wrapped(signature) + "{\n" + body + "}\n";
}

std::string familyOf(const contract::Family &family)
{
    const std::string name = family.name;
    std::string text = "\n/* " + name + ": ";
    for (const char *letter = family.comment; *letter != '\0'; ++letter) {
        text += *letter;
        if (*letter == '\n')
            text += " * ";
    }
    text += " */\n";
    text += "\n/** A new handle, to be given back to " + name + "_release. */\n" +
            functionOf(name + "Handle " + family.createName + "(void)",
                "    return (" + name + "Handle)createDevice();\n");
    text += "\n/** Gives the handle back; it is not used afterwards. */\n" +
            functionOf("void " + std::string(family.releaseName) + "(" + name + "Handle handle)",
                "    releaseDevice(handle);\n");
    return text;
}

std::string operationOf(const contract::Operation &operation)
{
    std::string body;
    for (const auto &argument : operation.arguments)
        body += "    (void)" + std::string(argument.name) + ";\n";
    body += "    return DEVICE_NOT_SUPPORTED;\n";
    return commentOf(operation.comment) +
           functionOf(std::string("DeviceCode ") + operation.name + operation.parameters, body);
}

} // namespace

std::string skeleton()
{
    std::string text = beginning;
    for (const auto &function : contract::texts) {
        text += commentOf(function.comment);
        for (const auto &body : textBodies) {
            if (body.name == function.name)
                text += functionOf(std::string("const char *") + function.name + "(" +
                                       function.type + " " + function.argument + ")",
                    body.body);
        }
    }
    for (const auto &family : contract::families) {
        text += familyOf(family);
        for (const auto &operation : contract::operations) {
            if (std::string_view(operation.family) == family.name)
                text += operationOf(operation);
        }
    }
    return text;
}

} // namespace devicetools
