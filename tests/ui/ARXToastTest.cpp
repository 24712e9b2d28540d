#include "ui/ARXToast.h"

#include "support/ARXTestEnvironment.h"

#include <QApplication>
#include <QLineEdit>
#include <QPointer>

namespace {

using namespace std::chrono_literals;

class ARXToastTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        window.resize(600, 400);
        window.show();
        QApplication::setActiveWindow(&window);
        field->setFocus();
    }
    QWidget window;
    QLineEdit* field = new QLineEdit(&window);
};

TEST_F(ARXToastTest, ShowsOverTheBottomWithoutTakingFocusAndGoesAway) {
    QPointer<ARXToast> toast =
        ARXToast::present(field, QStringLiteral("“a.txt” doesn’t exists."), 100ms);
    ASSERT_NE(toast, nullptr);
    EXPECT_EQ(toast->parentWidget(), &window);
    EXPECT_TRUE(toast->isVisible());
    EXPECT_EQ(toast->text(), QStringLiteral("“a.txt” doesn’t exists."));
    const QRect frame = toast->geometry();
    EXPECT_TRUE(window.rect().contains(frame));
    EXPECT_GT(frame.top(), window.height() / 2);
    EXPECT_NEAR(frame.center().x(), window.width() / 2, 2);
    EXPECT_TRUE(field->hasFocus());

    // It follows its window.
    window.resize(800, 500);
    EXPECT_TRUE(waitUntil([&] { return toast && toast->geometry().bottom() > 400; }));

    EXPECT_TRUE(waitUntil([&] { return toast.isNull(); }));
    EXPECT_TRUE(field->hasFocus());
}

TEST_F(ARXToastTest, ANewMessageReplacesTheOneOnScreen) {
    QPointer<ARXToast> first = ARXToast::present(&window, QStringLiteral("one"));
    QPointer<ARXToast> second = ARXToast::present(&window, QStringLiteral("two"));
    EXPECT_TRUE(first.isNull() || first->isHidden());
    // The replaced one is deleted from the event loop.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull());
    ASSERT_FALSE(second.isNull());
    EXPECT_TRUE(second->isVisible());
    EXPECT_EQ(ARXToast::present(nullptr, QStringLiteral("nowhere")), nullptr);
}

} // namespace
