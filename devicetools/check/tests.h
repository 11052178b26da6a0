#pragma once

#include "devicetools/check/Session.h"

#include <span>

namespace check {

/** What a test needs to be allowed. */
enum class Needs { Nothing, Write, Firmware };

/** One rule of the contract. Its function runs in a process of its own, loads the library itself
 * and says what it finds to the session; a test that finds nothing has passed. */
struct Test {
    const char *name;
    const char *about; ///< the rule, in a sentence
    Needs needs;
    void (*run)(Session &session);
};

/** In the order in which they run. */
extern const std::span<const Test> tests;

/** What the test is called that the watching process judges: by what the test's process printed. */
inline constexpr std::string_view quietTest = "quiet";
/** What finds the operations that crash or hang; the tests behind it leave these out. */
inline constexpr std::string_view answersTest = "answers";
/** The one test that takes slow operations too. */
inline constexpr std::string_view timeTest = "time";

// The tests' functions, by file.

// loading.cpp
void allFunctionsAreThere(Session &session);
void loadsTwice(Session &session);
void everythingAnswers(Session &session);
void keepsQuiet(Session &session);
void keepsLocale(Session &session);
void keepsWorkingFolder(Session &session);
void keepsUmask(Session &session);
void keepsSignalHandlers(Session &session);
void keepsRounding(Session &session);
void leavesNoThread(Session &session);
void leavesNoDescriptor(Session &session);
void handlesDoNotGrow(Session &session);

// values.cpp
void staysInBounds(Session &session);
void writesWhole(Session &session);
void leavesUntouched(Session &session);
void flagsAreZeroOrOne(Session &session);
void textsStayInBounds(Session &session);
void textsEnd(Session &session);
void textsBeginAlike(Session &session);
void textsFitAnySize(Session &session);

// codes.cpp
void answersWithoutFaults(Session &session);
void onlyOneAnswersTwenty(Session &session);
void codesRepeat(Session &session);
void codesMatchHardware(Session &session);
void sensorsEnd(Session &session);
void channelsEnd(Session &session);
void errorTextsHold(Session &session);
void startupReasonTextsHold(Session &session);
void hardwareErrorTextsHold(Session &session);

// handles.cpp
void handlesStandAlone(Session &session);
void threadsDoNotDisturb(Session &session);
void releasesOnAnotherThread(Session &session);
void answersInTime(Session &session);
void waitsNotForever(Session &session);

// writing.cpp
void givesBackWhatWasSet(Session &session);
void refusesBeyondRange(Session &session);
void keepsNeighbours(Session &session);
void keepsStrings(Session &session);
void keepsStringsForOthers(Session &session);
void writesOutputs(Session &session);
void automaticRuns(Session &session);
void averagesRun(Session &session);

// firmware.cpp
void verifiesFile(Session &session);
void missingFileFails(Session &session);

} // namespace check
