#include "platform/ARXDesktopLauncher.h"

#include "platform/ARXStartupNotification.h"
#include "support/ARXTestEnvironment.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

class ARXDesktopLauncherTest : public ARXTestEnvironment {};

TEST_F(ARXDesktopLauncherTest, TheDefaultApplicationStartsInTheFolderOfWhatItOpens) {
    // A stand-in application, the default for plain text, that writes down where it started.
    const Path recorder = ARXPath::join(root(), "recorder.sh");
    writeFile(recorder, "#!/bin/sh\npwd > \"$1.where\"\n");
    ::chmod(recorder.c_str(), 0755);
    writeFile(ARXPath::join(dataHome(), "applications/atrium-recorder.desktop"),
              "[Desktop Entry]\nType=Application\nName=Recorder\nExec=" + recorder +
                  " %f\nMimeType=text/plain;\n");
    writeFile(ARXPath::join(configHome(), "mimeapps.list"),
              "[Default Applications]\ntext/plain=atrium-recorder.desktop\n");
    const Path note = ARXPath::join(home(), "Notes/today.txt");
    writeFile(note, "plain text\n");
    ASSERT_EQ(::chdir(root().c_str()), 0); // Atrium's own folder is somewhere else

    EXPECT_EQ(ARXDesktopLauncher::openWithDefaultApplication(note), std::nullopt);
    ASSERT_TRUE(waitUntil([&] { return !readFile(note + ".where").empty(); }, 10000));
    EXPECT_EQ(readFile(note + ".where"), ARXPath::join(home(), "Notes") + "\n");
}

TEST_F(ARXDesktopLauncherTest, StartupMessagesCarryTheirTimeAndTravelInPiecesOfTwentyBytes) {
    EXPECT_EQ(ARXStartupNotification::timeOf("kwin-1234-host-app-3_TIME99887766"), 99887766u);
    EXPECT_EQ(ARXStartupNotification::timeOf("no-time-here"), 0u);
    const QByteArray text =
        ARXStartupNotification::message("new", {{"ID", "a-1_TIME5"}, {"NAME", "A \"B\""}});
    EXPECT_EQ(text, "new: ID=a-1_TIME5 NAME=\"A \\\"B\\\"\"");
    const QList<QByteArray> pieces = ARXStartupNotification::pieces(text);
    ASSERT_EQ(pieces.size(), 2);
    EXPECT_EQ(pieces[0], text.left(20));
    EXPECT_EQ(pieces[1].size(), 20);
    EXPECT_EQ(pieces[1].left(text.size() - 20), text.mid(20));
    EXPECT_EQ(pieces[1].at(text.size() - 20), '\0');
    // A message that fills its pieces exactly still gets its closing zero, in a piece of its own.
    EXPECT_EQ(ARXStartupNotification::pieces(QByteArray(20, 'x')).size(), 2);
}

} // namespace
