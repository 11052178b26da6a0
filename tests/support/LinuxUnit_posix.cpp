#include "tests/support/LinuxUnit_posix.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <array>
#include <cstring>
#include <dlfcn.h>
#include <unistd.h>

namespace support {

using contract::Role;

namespace {

constexpr const char *bus = "DBUS_SYSTEM_BUS_ADDRESS";

double numberAt(const unsigned char *bytes, contract::Number number, std::size_t width)
{
    if (number == contract::Number::Real) {
        double real = 0;
        std::memcpy(&real, bytes, sizeof real);
        return real;
    }
    std::uint64_t bits = 0;
    std::memcpy(&bits, bytes, width);
    const bool isNegative =
        number == contract::Number::Signed && (bits >> (width * 8 - 1) & 1) != 0 && width < 8;
    return isNegative ? double(std::int64_t(bits) - (std::int64_t(1) << (width * 8)))
                      : double(std::int64_t(bits));
}

void takeOut(const contract::Argument &argument, const std::vector<unsigned char> &bytes,
    LinuxUnit::Answer &answer)
{
    if (argument.role == Role::Out) {
        answer.numbers.push_back(numberAt(bytes.data(), argument.number, argument.width));
    } else if (argument.role == Role::Buffer) {
        answer.text = QByteArray(reinterpret_cast<const char *>(bytes.data()));
    } else if (argument.role == Role::Record) {
        for (const auto &field : contract::find(contract::structs, argument.type)->fields)
            answer.numbers.push_back(
                numberAt(bytes.data() + field.offset, field.number, field.width));
    }
}

} // namespace

LinuxUnit::LinuxUnit()
    // It stays: what it keeps for the process would look lost to a sanitizer when it has gone.
    : library(::dlopen(VORN_LINUXUNIT_LIBRARY, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE))
{
    if (!library)
        qFatal("%s", ::dlerror());
    qputenv("VORNAUX_ROOT", QFile::encodeName(folder.path()));
    qputenv("XDG_STATE_HOME", QFile::encodeName(path(QStringLiteral("/state"))));
    qunsetenv("VORNAUX_CONFIG");
    // No service of the machine that the test runs on, unless the test plays some.
    ownsBus = !qEnvironmentVariableIsSet(bus);
    if (ownsBus)
        qputenv(bus, "unix:path=" + QFile::encodeName(path(QStringLiteral("/no-bus"))));
}

LinuxUnit::~LinuxUnit()
{
    releaseAll();
    ::dlclose(library);
    qunsetenv("VORNAUX_ROOT");
    qunsetenv("XDG_STATE_HOME");
    if (ownsBus)
        qunsetenv(bus);
}

QString LinuxUnit::path(const QString &path) const
{
    return folder.path() + path;
}

void LinuxUnit::write(const QString &name, const QByteArray &content) const
{
    QDir().mkpath(QFileInfo(path(name)).path());
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s: %s", qPrintable(path(name)), qPrintable(file.errorString()));
}

void LinuxUnit::link(const QString &name, const QByteArray &target) const
{
    QDir().mkpath(QFileInfo(path(name)).path());
    if (::symlink(target.constData(), QFile::encodeName(path(name)).constData()) != 0)
        qFatal("%s: %s", qPrintable(path(name)), std::strerror(errno));
}

QByteArray LinuxUnit::read(const QString &name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void LinuxUnit::remove(const QString &name) const
{
    if (!QFile::remove(path(name)) && !QDir(path(name)).removeRecursively())
        qFatal("%s stays", qPrintable(path(name)));
}

contract::Function LinuxUnit::function(const char *name) const
{
    return reinterpret_cast<contract::Function>(::dlsym(library, name));
}

LinuxUnit::Answer LinuxUnit::call(
    const char *name, const std::vector<Value> &given, std::uint32_t bufferSize)
{
    const auto *operation = contract::find(contract::operations, name);
    if (!operation)
        qFatal("the contract has no %s", name);
    auto &handle = handles[operation->family];
    if (!handle) {
        const auto create = std::string(operation->family) + "_create";
        handle = reinterpret_cast<void *(*)()>(function(create.c_str()))();
    }
    const auto count = operation->arguments.size();
    std::vector<contract::Value> values(count);
    std::vector<std::vector<unsigned char>> written(count);
    values[0].pointer = handle;
    auto next = given.begin();
    for (std::size_t place = 1; place < count; ++place) {
        const auto &argument = operation->arguments[place];
        if (argument.isWritten()) {
            written[place].resize(argument.role == Role::Buffer ? bufferSize : argument.width);
            values[place].pointer = written[place].data();
        } else if (argument.role == Role::Size) {
            values[place].integer = bufferSize;
        } else if (argument.role == Role::String) {
            values[place] = contract::textValue(std::get<const char *>(*next++));
        } else if (argument.number == contract::Number::Real) {
            values[place].real = std::get<double>(*next++);
        } else {
            values[place].integer = std::int64_t(std::get<double>(*next++));
        }
    }
    Answer answer;
    answer.code = operation->call(function(name), values.data());
    for (std::size_t place = 1; answer.code == DEVICE_OK && place < count; ++place)
        takeOut(operation->arguments[place], written[place], answer);
    return answer;
}

QByteArray LinuxUnit::textOf(const Answer &answer) const
{
    return reinterpret_cast<const char *(*)(std::int32_t)>(function("deviceErrorText"))(
        answer.code);
}

void LinuxUnit::releaseAll()
{
    for (const auto &[family, handle] : handles)
        reinterpret_cast<void (*)(void *)>(function((family + "_release").c_str()))(handle);
    handles.clear();
}

} // namespace support
