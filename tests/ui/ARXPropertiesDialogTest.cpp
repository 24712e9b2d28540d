#include "ui/ARXPropertiesDialog.h"

#include "support/ARXTestEnvironment.h"

#include <QLabel>
#include <QSignalSpy>

#include <gtest/gtest.h>

namespace {

class ARXPropertiesDialogTest : public ARXTestEnvironment {
protected:
    Path at(const std::string& name) const { return ARXPath::join(root(), name); }
};

TEST_F(ARXPropertiesDialogTest, AFolderIsMeasuredInTheBackgroundAndAFileAtOnce) {
    writeFile(at("tree/a.bin"), std::string(1000, 'a'));
    writeFile(at("tree/deep/b.bin"), std::string(2500, 'b'));
    ARXPropertiesDialog folder(at("tree"));
    EXPECT_TRUE(folder.isMeasuring());
    EXPECT_EQ(folder.sizeText(), "Calculating…");
    QSignalSpy measured(&folder, &ARXPropertiesDialog::measured);
    ASSERT_TRUE(waitUntil([&] { return !measured.isEmpty(); }));
    EXPECT_TRUE(folder.sizeText().contains("3500") || folder.sizeText().contains("3,500"))
        << folder.sizeText().toStdString();

    ARXPropertiesDialog file(at("tree/a.bin"));
    EXPECT_FALSE(file.isMeasuring());
    EXPECT_TRUE(file.sizeText().startsWith("1000 B") || file.sizeText().startsWith("1 KB"))
        << file.sizeText().toStdString();
}

TEST_F(ARXPropertiesDialogTest, AnItemThatCannotBeReadShowsWhyAndManyItemsOpenAFewCascadedWindows) {
    ARXPropertiesDialog missing(at("nowhere"));
    bool said = false;
    for (QLabel* label : missing.findChildren<QLabel*>()) {
        said = said || (label->text().contains(ARXPath::display(at("nowhere"))) &&
                        label->text().contains("No such file"));
    }
    EXPECT_TRUE(said);
    EXPECT_TRUE(missing.sizeText().isEmpty());

    std::vector<Path> many;
    for (int i = 0; i < 30; ++i) {
        writeFile(at("many/" + std::to_string(i)), "x");
        many.push_back(at("many/" + std::to_string(i)));
    }
    const auto dialogs = ARXPropertiesDialog::showFor(many);
    EXPECT_EQ(dialogs.size(), ARXPropertiesDialog::kMaximumWindows);
    // They cascade rather than stand exactly on top of one another.
    for (size_t i = 1; i < 5; ++i) {
        EXPECT_GT(dialogs[i]->pos().x(), dialogs[i - 1]->pos().x()) << i;
        EXPECT_GT(dialogs[i]->pos().y(), dialogs[i - 1]->pos().y()) << i;
    }
    for (ARXPropertiesDialog* dialog : dialogs) {
        dialog->close();
    }
}

} // namespace
