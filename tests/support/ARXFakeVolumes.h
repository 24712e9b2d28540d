#pragma once

#include "platform/ARXVolume.h"

#include <initializer_list>

// Builds a volume list for tests that must not depend on this machine's mounts.
inline ARXVolumeRef ARXMakeVolume(const Path& root, bool caseSensitive = true,
                                  const QString& name = QString()) {
    auto v = std::make_shared<ARXVolume>();
    v->root = root;
    v->caseSensitive = caseSensitive;
    v->name = name.isEmpty() ? QString::fromStdString(root) : name;
    v->isRootFileSystem = root == "/";
    return v;
}
