#include "platform/ARXNotificationCenter.h"

#include "platform/ARXMainQueue.h"

#include <algorithm>

ARXNotificationCenter& ARXNotificationCenter::shared() {
    static ARXNotificationCenter center;
    return center;
}

ARXNotificationCenter::Token ARXNotificationCenter::addObserver(const QString& name, QObject* owner,
                                                                Handler handler) {
    Q_ASSERT(ARXMainQueue::isMainThread());
    const Token token = _nextToken++;
    _observers.push_back({token, name, owner, owner != nullptr, std::move(handler)});
    if (owner) {
        watchOwner(owner);
    }
    return token;
}

void ARXNotificationCenter::watchOwner(QObject* owner) {
    if (_ownerConnections.contains(owner)) {
        return;
    }
    _ownerConnections.insert(owner, QObject::connect(owner, &QObject::destroyed,
                                                     [this, owner] { removeObservers(owner); }));
}

void ARXNotificationCenter::removeObserver(Token token) {
    std::erase_if(_observers, [token](const Observer& o) { return o.token == token; });
}

void ARXNotificationCenter::removeObservers(QObject* owner) {
    std::erase_if(_observers,
                  [owner](const Observer& o) { return o.hasOwner && o.owner == owner; });
    if (auto it = _ownerConnections.find(owner); it != _ownerConnections.end()) {
        QObject::disconnect(it.value());
        _ownerConnections.erase(it);
    }
}

void ARXNotificationCenter::post(const QString& name, const QVariantMap& userInfo) {
    ARXNotification notification{name, userInfo};
    if (ARXMainQueue::isMainThread()) {
        deliver(notification);
    } else {
        ARXMainQueue::async([this, notification] { deliver(notification); });
    }
}

void ARXNotificationCenter::deliver(const ARXNotification& notification) {
    // Handlers may add or remove observers while we deliver: walk a snapshot of the tokens and
    // skip any observer that has gone in the meantime.
    std::vector<Token> tokens;
    for (const Observer& o : _observers) {
        if (o.name == notification.name) {
            tokens.push_back(o.token);
        }
    }
    for (Token token : tokens) {
        auto it = std::find_if(_observers.begin(), _observers.end(),
                               [token](const Observer& o) { return o.token == token; });
        if (it == _observers.end()) {
            continue;
        }
        Handler handler = it->handler; // the vector may reallocate inside the call
        handler(notification);
    }
}

int ARXNotificationCenter::observerCount(const QString& name) const {
    return int(std::count_if(_observers.begin(), _observers.end(),
                             [&name](const Observer& o) { return o.name == name; }));
}
