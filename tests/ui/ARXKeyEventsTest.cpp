#include "ui/ARXKeyEvents.h"

#include <QKeyEvent>

#include <gtest/gtest.h>

namespace {

// The key press a sequence stands for, as the keyboard would deliver it.
ARXHotkey pressed(const QKeySequence& sequence) {
    const QKeyCombination combination = sequence[0];
    const QKeyEvent event(QEvent::KeyPress, combination.key(), combination.keyboardModifiers());
    return ARXKeyEvents::hotkeyOf(&event);
}

ARXHotkey parsed(const char* text) {
    return *ARXHotkey::parse(QString::fromUtf8(text));
}

TEST(ARXKeyEventsTest, EveryDefaultHotkeyIsTheKeyItsSequenceNames) {
    for (const auto& [action, hotkey] : ARXDefaultHotkeys::table()) {
        const QKeySequence sequence = ARXKeyEvents::sequenceOf(hotkey);
        ASSERT_EQ(sequence.count(), 1) << hotkey.symbolText().toStdString();
        EXPECT_EQ(pressed(sequence), hotkey) << hotkey.symbolText().toStdString();
    }
    // Keys the defaults do not use but a user may choose.
    for (const char* text : {"cmd+⌦", "option+←", "→", "shift+↓", "cmd+↩", "⎋", "ctrl+⇥",
                             "cmd+SPACE", "cmd+,", "shift+F5", "↖", "⇟", "cmd+;", "cmd+'"}) {
        const ARXHotkey hotkey = parsed(text);
        EXPECT_EQ(pressed(ARXKeyEvents::sequenceOf(hotkey)), hotkey) << text;
    }
}

TEST(ARXKeyEventsTest, ModifiersAreTheDesktopsKeys) {
    // "cmd" is Ctrl, "ctrl" is Meta, "option" is Alt.
    EXPECT_EQ(ARXKeyEvents::sequenceOf(parsed("cmd+⌫")),
              QKeySequence(Qt::ControlModifier | Qt::Key_Backspace));
    EXPECT_EQ(ARXKeyEvents::sequenceOf(parsed("ctrl+cmd+f")),
              QKeySequence(Qt::MetaModifier | Qt::ControlModifier | Qt::Key_F));
    EXPECT_EQ(ARXKeyEvents::sequenceOf(parsed("option+cmd+l")),
              QKeySequence(Qt::AltModifier | Qt::ControlModifier | Qt::Key_L));
    // Shifted punctuation keeps its unshifted key, as the user presses it.
    EXPECT_EQ(ARXKeyEvents::sequenceOf(parsed("shift+cmd+.")),
              QKeySequence(Qt::ShiftModifier | Qt::ControlModifier | Qt::Key_Period));
    EXPECT_EQ(ARXKeyEvents::sequenceOf(parsed("cmd+↑")).toString(QKeySequence::PortableText),
              QStringLiteral("Ctrl+Up"));
}

TEST(ARXKeyEventsTest, AKeyWithoutACodeShowsNothing) {
    EXPECT_TRUE(ARXKeyEvents::sequenceOf(parsed("cmd+NOSUCHKEY")).isEmpty());
    EXPECT_TRUE(ARXKeyEvents::sequenceOf(ARXHotkey{}).isEmpty());
    EXPECT_TRUE(ARXKeyEvents::sequenceOf(parsed("F36")).isEmpty());
}

} // namespace
