#pragma once

#include <cstdint>
#include <functional>

// The event sounds a file operation may end with. Raw values are stable.
enum class ARXSoundEffect : uint8_t {
    silence = 0,
    file_removed = 1,
    file_added = 2,
    empty_trash = 3,
};

// Plays the desktop's own event sounds: the freedesktop sound theme's events through libcanberra,
// so that the user's sound theme and volume settings apply. Whether a sound should play at all
// (the user's setting) is the caller's decision.
//
// Playing never blocks the caller and never fails visibly: where no sound server or device
// answers (a headless session, a test run), the first failure says so once on standard error and
// later ones are quiet.
namespace ARXSoundPlayer {

// The sound-theme event id of an effect; null for `silence`.
const char* eventId(ARXSoundEffect effect);

// Plays the effect (`silence` plays nothing). Any thread.
void play(ARXSoundEffect effect);

// Replaces the audio output: while a sink is set, play hands it the effect (`silence` included)
// instead of making a sound. For tests; an empty function restores the audio output.
void setSink(std::function<void(ARXSoundEffect)> sink);

} // namespace ARXSoundPlayer
