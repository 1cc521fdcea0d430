#include "support/TestSupport.h"

#include <QImage>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct Result {
    int exitCode = -1;
    QString out;
    QString err;
};

Result runProgram(const QString& program, const QStringList& arguments, const QProcessEnvironment& env,
                  int timeoutMs = 30000) {
    QProcess process;
    process.setProcessEnvironment(env);
    process.start(program, arguments);
    Result result;
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished();
        result.err = QStringLiteral("timed out");
        return result;
    }
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromLocal8Bit(process.readAllStandardOutput());
    result.err = QString::fromLocal8Bit(process.readAllStandardError());
    return result;
}

QProcessEnvironment withoutDisplay() {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove(QStringLiteral("DISPLAY"));
    env.remove(QStringLiteral("WAYLAND_DISPLAY"));
    env.remove(QStringLiteral("QT_QPA_PLATFORM"));
    return env;
}

const QString binary = QStringLiteral(LUMIVEX_BINARY);

TEST(ProgramStart, HelpAndVersionAnswerWithoutDisplay) {
    const Result version = runProgram(binary, {QStringLiteral("--version")}, withoutDisplay());
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_TRUE(version.out.startsWith(QStringLiteral("lumivex "))) << version.out.toStdString();
    const Result help = runProgram(binary, {QStringLiteral("--help")}, withoutDisplay());
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.out.contains(QStringLiteral("Usage: lumivex")));
    const Result wrong = runProgram(binary, {QStringLiteral("--frobnicate")}, withoutDisplay());
    EXPECT_EQ(wrong.exitCode, 2);
    EXPECT_TRUE(wrong.err.contains(QStringLiteral("unknown argument")));
}

TEST(ProgramStart, WithoutDisplaySaysItNeedsOne) {
    const Result r = runProgram(binary, {}, withoutDisplay());
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_TRUE(r.err.contains(QStringLiteral("needs a graphical display"))) << r.err.toStdString();
}

// A clean profile opens on the first tutorial page; a finished tutorial is remembered.
void expectTutorialOnCleanProfile(const QString& program, QStringList prefix,
                                  const QProcessEnvironment& env) {
    QTemporaryDir profile;
    const QString shot = profile.filePath(QStringLiteral("first.png"));
    QStringList arguments = prefix;
    if (program != binary)
        arguments << binary;
    arguments << QStringLiteral("--config-dir") << profile.filePath(QStringLiteral("config"))
              << QStringLiteral("--screenshot") << shot;
    const Result r = runProgram(program, arguments, env);
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_TRUE(r.out.contains(QStringLiteral("showing tutorialPage0"))) << r.out.toStdString();
    const QImage image(shot);
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(image.size(), QSize(390, 844));
}

TEST(ProgramStart, DemoWritesCollagesWithoutAnyDisplay) {
    QTemporaryDir out;
    const Result r = runProgram(binary, {QStringLiteral("demo"), QStringLiteral("--out"), out.path()},
                                withoutDisplay(), 120000);
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    const QStringList printed = r.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_GE(printed.size(), 3);
    for (const QString& path : printed) {
        const QImage picture(path);
        ASSERT_FALSE(picture.isNull()) << path.toStdString();
        EXPECT_TRUE(path.startsWith(out.path()));
        EXPECT_EQ(picture.width() % 3, 0); // points at three pixels each
    }
}

TEST(ProgramStart, OffscreenPlatformShowsTutorialOnCleanProfile) {
    QProcessEnvironment env = withoutDisplay();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    expectTutorialOnCleanProfile(binary, {}, env);
}

TEST(ProgramStart, XvfbShowsTutorialOnCleanProfile) {
    const QString xvfbRun = QStandardPaths::findExecutable(QStringLiteral("xvfb-run"));
    if (xvfbRun.isEmpty())
        GTEST_SKIP() << "xvfb-run is not installed";
    QProcessEnvironment env = withoutDisplay();
    expectTutorialOnCleanProfile(
        xvfbRun, {QStringLiteral("-a"), QStringLiteral("-s"), QStringLiteral("-screen 0 1280x1024x24")}, env);
}

} // namespace
