#include "platform/ARXMimeTypes.h"

#include "support/ARXTestEnvironment.h"
#include "support/ARXTestImages.h"

#include <sys/stat.h>
#include <unistd.h>

namespace {

class ARXMimeTypesTest : public ARXTestEnvironment {
protected:
    Path at(std::string_view name) const { return ARXPath::join(root(), name); }
    static std::string pngBytes() { return ARXImageBytes(4, 3); }
    QString typeOf(std::string_view name) const { return ARXMimeTypes::typeOfPath(at(name)); }
};

TEST_F(ARXMimeTypesTest, NameDecidesWhenItIsClear) {
    writeFile(at("photo.png"), pngBytes());
    writeFile(at("notes.txt"), pngBytes()); // the name wins over the content
    writeFile(at("caf\xe9.png"), pngBytes());
    makeFolder(at("folder.png"));
    EXPECT_EQ(typeOf("photo.png"), "image/png");
    EXPECT_EQ(typeOf("notes.txt"), "text/plain");
    EXPECT_EQ(typeOf("caf\xe9.png"), "image/png");
    EXPECT_EQ(typeOf("folder.png"), ARXMimeTypes::kFolderType);
    // An item that is not there is judged by its name.
    EXPECT_EQ(typeOf("gone.pdf"), "application/pdf");
    EXPECT_EQ(typeOf("gone"), ARXMimeTypes::kDataType);
}

TEST_F(ARXMimeTypesTest, ContentDecidesWhenTheNameCannot) {
    writeFile(at("picture"), pngBytes());
    writeFile(at("letter"), "Dear reader,\nplain words only.\n");
    writeFile(at("blob"), std::string("\x00\x01\x02\x03\xfe\xff\x00\x10", 8));
    writeFile(at("nothing"), "");
    EXPECT_EQ(typeOf("picture"), "image/png");
    EXPECT_EQ(typeOf("letter"), "text/plain");
    EXPECT_EQ(typeOf("blob"), ARXMimeTypes::kDataType);
    EXPECT_EQ(typeOf("nothing"), "application/x-zerosize");

    // ".ts" is both an MPEG transport stream and a Qt translation; the XML settles it.
    writeFile(at("strings.ts"),
              "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<!DOCTYPE TS>\n<TS version=\"2.1\">\n");
    EXPECT_EQ(typeOf("strings.ts"), "text/vnd.trolltech.linguist");
}

TEST_F(ARXMimeTypesTest, LinksAreTheirTargetsAndSpecialFilesAreNotRead) {
    writeFile(at("clip.mkv"), "not really a movie");
    ASSERT_EQ(::symlink("clip.mkv", at("latest").c_str()), 0);
    ASSERT_EQ(::symlink("nowhere.png", at("dangling").c_str()), 0);
    makeFolder(at("dir"));
    ASSERT_EQ(::symlink("dir", at("dir-link.txt").c_str()), 0);
    EXPECT_EQ(typeOf("latest"), "video/x-matroska");
    EXPECT_EQ(typeOf("dangling"), "inode/symlink");
    EXPECT_EQ(typeOf("dir-link.txt"), ARXMimeTypes::kFolderType);

    // Opening a FIFO to sniff it would wait for a writer forever.
    ASSERT_EQ(::mkfifo(at("pipe.txt").c_str(), 0600), 0);
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    EXPECT_EQ(typeOf("pipe.txt"), "inode/fifo");
    EXPECT_EQ(typeOf("pipe"), "inode/fifo");
    EXPECT_EQ(ARXMimeTypes::typeOfPath("/dev/null"), "inode/chardevice");
}

TEST_F(ARXMimeTypesTest, ExtensionsAndNames) {
    EXPECT_EQ(ARXMimeTypes::typeForExtension("png"), "image/png");
    EXPECT_EQ(ARXMimeTypes::typeForExtension("no-such-extension"), ARXMimeTypes::kDataType);
    EXPECT_EQ(ARXMimeTypes::typeForExtension(""), ARXMimeTypes::kDataType);
    EXPECT_EQ(ARXMimeTypes::typeOfName("archive.tar.gz"), "application/x-compressed-tar");
    EXPECT_EQ(ARXMimeTypes::typeOfName(""), ARXMimeTypes::kDataType);
}

TEST_F(ARXMimeTypesTest, Families) {
    using F = ARXTypeFamily;
    const auto is = [](const char* type, F family) {
        return ARXMimeTypes::conformsTo(QString::fromLatin1(type), family);
    };
    EXPECT_TRUE(is("image/svg+xml", F::image));
    EXPECT_FALSE(is("image/png", F::audiovisual));
    EXPECT_TRUE(is("video/mp4", F::movie));
    EXPECT_TRUE(is("video/mp4", F::audiovisual));
    EXPECT_TRUE(is("audio/mpeg", F::audiovisual));
    EXPECT_FALSE(is("audio/mpeg", F::movie));
    EXPECT_TRUE(is("application/x-compressed-tar", F::archive));
    EXPECT_TRUE(is("application/x-iso9660-image", F::archive)); // an alias
    EXPECT_TRUE(is("application/java-archive", F::archive));    // derived from zip
    EXPECT_FALSE(is("application/pdf", F::archive));
    EXPECT_TRUE(is("text/x-c++src", F::text));
    EXPECT_FALSE(is("image/png", F::text));
    EXPECT_FALSE(is("no/such-type", F::image));

    EXPECT_TRUE(ARXMimeTypes::conformsTo("application/x-compressed-tar", "application/gzip"));
    EXPECT_TRUE(ARXMimeTypes::conformsTo("image/png", "image/png"));
    EXPECT_FALSE(ARXMimeTypes::conformsTo("image/png", "text/plain"));

    const std::vector<std::string> packages{"app", "bundle"};
    EXPECT_TRUE(ARXMimeTypes::isPackage(ARXMimeTypes::kFolderType, "Calculator.APP", packages));
    EXPECT_FALSE(ARXMimeTypes::isPackage(ARXMimeTypes::kFolderType, "Documents", packages));
    EXPECT_FALSE(ARXMimeTypes::isPackage(ARXMimeTypes::kFolderType, ".app", packages));
    EXPECT_FALSE(ARXMimeTypes::isPackage("application/zip", "Calculator.app", packages));
}

TEST_F(ARXMimeTypesTest, DescriptionsAndIcons) {
    EXPECT_FALSE(ARXMimeTypes::kindText("image/png").isEmpty());
    EXPECT_TRUE(ARXMimeTypes::kindText("no/such-type").isEmpty());
    EXPECT_EQ(ARXMimeTypes::genericIconName("image/png"), "image-x-generic");
    EXPECT_EQ(ARXMimeTypes::iconName(ARXMimeTypes::kFolderType), "inode-directory");
}

} // namespace
