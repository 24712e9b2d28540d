#pragma once

// Applies the appearance setting: 0 follows the desktop, 1 is light, 2 is dark.
namespace ARXAppearance {
void apply(long long appearance);
}
