#include "report/systemReport.h"

#include "frame/DeviceHandle.h"
#include "frame/qtVersions.h"
#include "frame/version.h"
#include "platform/platform.h"
#include "report/formatters.h"
#include "report/sections.h"

#include <QDateTime>
#include <QFile>
#include <QTextStream>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

struct VersionRow {
    const char *name;
    DeviceCode (*read)(
        VersionsHandle, std::uint8_t *, std::uint8_t *, std::uint8_t *, std::uint8_t *);
};

constexpr VersionRow versionRows[] = {
    {"Vornaux API", Versions_getVornAuxVersion},
    {"Vornaux Driver", Versions_getVornAuxDrvVersion},
    {"FPGA", Versions_getFPGAVersion},
    {"Front uc", Versions_getFrontVersion},
    {"System Supervisor", Versions_getSSVersion},
    {"OS version", Versions_getOSVersion},
};

QString versionLines()
{
    const DeviceHandle<Versions_create, Versions_release> versions;
    QString text = QStringLiteral("Vornsettings v%1\n").arg(programVersion());
    for (const VersionRow &row : versionRows) {
        std::uint8_t major = 0;
        std::uint8_t minor = 0;
        std::uint8_t release = 0;
        std::uint8_t build = 0;
        const auto code = row.read(versions, &major, &minor, &release, &build);
        text += formatVersionLine(row.name, major, minor, release, build, code);
    }
    return text;
}

QString banner(const char *title)
{
    return QStringLiteral("\n------------------  ") + QString::fromLatin1(title) +
           QStringLiteral("  ------------------\n");
}

/** Where a report goes: to its end, or piece by piece to somebody who takes it. */
struct Target {
    QString text;
    std::function<void(const QString &piece)> take; ///< may be empty

    void passOn()
    {
        if (take && !text.isEmpty())
            take(std::exchange(text, {}));
    }
};

/** With a plain line feed. */
template <typename Text>
void addLine(Target &target, const Text &line)
{
    constexpr int pieceLength = 1 << 20;
    target.text += line;
    target.text += QLatin1Char('\n');
    if (target.text.size() >= pieceLength)
        target.passOn();
}

void addLines(Target &target, std::istream &log)
{
    for (std::string line; std::getline(log, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        addLine(target, QLatin1String(line.data(), line.data() + line.size()));
    }
}

/** The text of a log that begins with a byte-order mark. Nothing if there is no mark: such a log is
 *  its bytes as they are, from its beginning again. */
std::optional<QString> decodedByMark(std::istream &log)
{
    QByteArray piece(1 << 16, '\0');
    const auto read = [&](int most) {
        log.read(piece.data(), most);
        return piece.left(int(log.gcount()));
    };
    const auto decoder = qtVersions::decoderByMark(read(4));
    log.clear();
    log.seekg(0);
    if (!decoder)
        return std::nullopt;
    QString decoded;
    while (log)
        decoded += qtVersions::decode(*decoder, read(1 << 16));
    return decoded;
}

/** Appends one log file, each line with a plain line feed. A file that can't be opened leaves no
 *  trace; only regular files count as openable, since a pipe could wait for ever. */
void addLog(Target &target, const std::filesystem::path &path, const char *header)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return;
    std::vector<char> buffer(1 << 16); // outlives the stream
    std::ifstream file;
    file.rdbuf()->pubsetbuf(buffer.data(), std::streamsize(buffer.size()));
    file.open(path, std::ios::binary);
    if (!file.is_open())
        return;
    target.text += QString::fromLatin1(header);

    // Logs may be large: growing step by step would need the memory twice.
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (!error && !target.take)
        target.text.reserve(
            target.text.size() + static_cast<decltype(target.text.size())>(size) + 1024);
    if (auto decoded = decodedByMark(file)) {
        QTextStream lines(&*decoded);
        for (QString line; lines.readLineInto(&line);)
            addLine(target, line);
    } else {
        addLines(target, file);
    }
}

void addReport(Target &target)
{
    const QString started = qtVersions::textDate(QDateTime::currentDateTime());
    QString &text = target.text;
    text = QStringLiteral("\nSystem report generated on: %1\n").arg(started);
    text += banner("SW Versions") + versionLines();
    text += banner("EEPROM data") + eepromDataText();
    text += banner("Diagnostic data") + diagnosticDataText();
    text += banner("ADC data") + adcDataText();
    text += banner("CPU board data") + cpuBoardDataText();
    text += banner("Settings") + settingsDataText();
    text += banner("Log Files");
    addLog(target, platform::hardwareErrorLog(), "\n\nFile:HardwareErrorLog.log:\n");
    addLog(target, platform::deviceServiceLog(), "\n\nFile:VornAuxService.log:\n");
    text += banner("End of report");
    target.passOn();
}

} // namespace

QString generateSystemReport()
{
    Target target;
    addReport(target);
    return target.text;
}

void generateSystemReport(const std::function<void(const QString &piece)> &take)
{
    Target target{{}, take};
    addReport(target);
}

void writeReportText(QIODevice &device, const QString &text)
{
    // Piece by piece, so that a large report isn't held twice.
    constexpr int pieceLength = 1 << 16;
    for (decltype(text.size()) start = 0; start < text.size(); start += pieceLength) {
        const QByteArray piece = text.mid(start, pieceLength).toLatin1();
        if (device.write(piece) != piece.size())
            return;
    }
}

void writeSystemReport(const std::filesystem::path &path)
{
    QFile file;
    if (platform::openForWriting(file, path))
        writeReportText(file, generateSystemReport());
}
