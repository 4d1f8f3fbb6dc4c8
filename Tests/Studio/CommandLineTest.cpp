#include <QProcess>
#include <gtest/gtest.h>
#include <ostream>

// The program itself, from a shell without a display.

namespace {

struct Outcome {
    int status;
    QString output, errors;
};

Outcome runWithoutDisplay(const QStringList& arguments) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QLatin1String(name));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(KA_STUDIO_PROGRAM), arguments);
    EXPECT_TRUE(process.waitForFinished(-1));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), QString::fromLocal8Bit(process.readAllStandardOutput()),
            QString::fromLocal8Bit(process.readAllStandardError())};
}

struct Case {
    const char* name;
    QStringList arguments;
    int status;
    const char* output; ///< begins so
    const char* errors;
};
std::ostream& operator<<(std::ostream& stream, const Case& c) {
    return stream << c.name;
}

class CommandLineWithoutDisplay : public testing::TestWithParam<Case> {};

TEST_P(CommandLineWithoutDisplay, AnswersOrSaysWhatIsMissing) {
    const Case& c = GetParam();
    const Outcome outcome = runWithoutDisplay(c.arguments);
    EXPECT_EQ(outcome.status, c.status) << outcome.errors.toStdString();
    const QString output = QString::fromLatin1(c.output);
    EXPECT_EQ(outcome.output.left(output.size()), output);
    EXPECT_EQ(outcome.output.isEmpty(), output.isEmpty());
    EXPECT_EQ(outcome.errors, QLatin1String(c.errors));
}

const char NoDisplay[] = "ka-studio: there is no display: DISPLAY and WAYLAND_DISPLAY are not set\n";

INSTANTIATE_TEST_SUITE_P(
    All, CommandLineWithoutDisplay,
    testing::Values(
        Case{"Version", {QStringLiteral("--version")}, 0, "ka-studio ", ""},
        Case{"ShortVersion", {QStringLiteral("-v")}, 0, "ka-studio ", ""},
        Case{"Help", {QStringLiteral("--help")}, 0, "Usage: ", ""},
        Case{"HelpBesideAFile", {QStringLiteral("walk.bvh"), QStringLiteral("-h")}, 0, "Usage: ", ""},
        Case{"NoArgument", {}, 1, "", NoDisplay},
        Case{"AFile", {QStringLiteral("walk.bvh")}, 1, "", NoDisplay}),
    [](const auto& c) { return c.param.name; });

TEST(CommandLine, RefusesAWayOfDrawingThatThereIsNot) {
    QProcess process;
    process.start(QStringLiteral(KA_STUDIO_PROGRAM),
                  {QStringLiteral("-platform"), QStringLiteral("offscreen"), QStringLiteral("--drawing"),
                   QStringLiteral("crayon")});
    ASSERT_TRUE(process.waitForFinished(-1));
    EXPECT_EQ(process.exitCode(), 1);
    const QByteArray errors = process.readAllStandardError(); // Qt may have said something before
    EXPECT_TRUE(errors.endsWith("ka-studio: --drawing is automatic, opengl or plain, not \"crayon\"\n"))
        << errors.toStdString();
}

} // namespace
