#include "ui/ARXFileClipboard.h"

#include <QMimeData>

#include <gtest/gtest.h>

#include <memory>

namespace {

using Paths = std::vector<Path>;

std::unique_ptr<QMimeData> payload(const char* format, const QByteArray& bytes) {
    auto data = std::make_unique<QMimeData>();
    data->setData(QString::fromLatin1(format), bytes);
    return data;
}

TEST(ARXFileClipboardTest, CopyAndCutRoundTripEveryByteOfTheNames) {
    const Paths paths{"/home/u/a b.txt", "/home/u/caf\xe9.txt", "/home/u/50%#?.txt"};
    for (const bool cut : {false, true}) {
        std::unique_ptr<QMimeData> data(ARXFileClipboard::makeMimeData(paths, cut));
        const ARXFileClipboard::Contents contents = ARXFileClipboard::read(data.get());
        EXPECT_EQ(contents.paths, paths);
        EXPECT_EQ(contents.cut, cut);
        EXPECT_EQ(data->data(QStringLiteral("x-special/gnome-copied-files")).split('\n').first(),
                  cut ? QByteArray("cut") : QByteArray("copy"));
        EXPECT_EQ(data->hasFormat(QStringLiteral("application/x-kde-cutselection")), cut);
    }
    EXPECT_EQ(ARXFileClipboard::fileUri("/home/u/caf\xe9 1.txt"),
              QByteArray("file:///home/u/caf%E9%201.txt"));
}

TEST(ARXFileClipboardTest, ReadsTheCutMarkerOfOtherFileManagers) {
    // GNOME's form alone, as Nautilus writes it.
    auto gnome = payload("x-special/gnome-copied-files", "cut\nfile:///tmp/a\nfile:///tmp/b");
    EXPECT_EQ(ARXFileClipboard::read(gnome.get()).paths, (Paths{"/tmp/a", "/tmp/b"}));
    EXPECT_TRUE(ARXFileClipboard::read(gnome.get()).cut);
    // KDE's marker beside a plain URI list.
    auto kde = payload("text/uri-list", "file:///tmp/a\r\n");
    kde->setData(QStringLiteral("application/x-kde-cutselection"), "1");
    EXPECT_TRUE(ARXFileClipboard::read(kde.get()).cut);
    kde->setData(QStringLiteral("application/x-kde-cutselection"), "0");
    EXPECT_FALSE(ARXFileClipboard::read(kde.get()).cut);
}

TEST(ARXFileClipboardTest, OnlyLocalFilesCount) {
    auto mixed = payload("text/uri-list", "# a comment\r\nhttps://example.org/x\r\n"
                                          "file://otherhost/etc/passwd\r\nsftp://h/x\r\n"
                                          "file://localhost/tmp/here\r\nfile:///tmp/there/\r\n");
    EXPECT_EQ(ARXFileClipboard::read(mixed.get()).paths, (Paths{"/tmp/here", "/tmp/there"}));

    auto web = payload("text/uri-list", "https://example.org/file.txt\r\n");
    EXPECT_FALSE(ARXFileClipboard::hasFiles(web.get()));

    QMimeData text;
    text.setText(QStringLiteral("/tmp/looks-like-a-path"));
    EXPECT_TRUE(ARXFileClipboard::read(&text).paths.empty());
    EXPECT_TRUE(ARXFileClipboard::read(nullptr).paths.empty());
}

} // namespace
