#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <vector>

struct ARXNotification {
    QString name;
    QVariantMap userInfo;
};

// Process-wide notifications by name, delivered on the main thread in the order observers were
// added. A post from another thread is carried to the main thread first. An observer goes away
// when it is removed by its token or when the QObject that owns it is destroyed, so a view never
// hears of something after its death.
class ARXNotificationCenter {
public:
    using Token = quint64;
    using Handler = std::function<void(const ARXNotification&)>;

    static ARXNotificationCenter& shared();

    // owner may be null: the observer then lives until removeObserver.
    Token addObserver(const QString& name, QObject* owner, Handler handler);
    void removeObserver(Token token);
    void removeObservers(QObject* owner);

    void post(const QString& name, const QVariantMap& userInfo = {});

    int observerCount(const QString& name) const;

private:
    struct Observer {
        Token token;
        QString name;
        QObject* owner;
        bool hasOwner;
        Handler handler;
    };

    void deliver(const ARXNotification& notification);
    void watchOwner(QObject* owner);

    std::vector<Observer> _observers;
    QHash<QObject*, QMetaObject::Connection> _ownerConnections;
    Token _nextToken = 1;
};
