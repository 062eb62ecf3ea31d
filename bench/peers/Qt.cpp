// A QThread with its event loop, and a QTimer that is pending. There must be a QCoreApplication.

#include "peers/Peer.h"

#include <QtCore/QMetaObject>
#include <QtCore/QObject>
#include <QtCore/QThread>
#include <QtCore/QTimer>

namespace bench {
namespace {

class Qt5 : public Peer
{
public:
    Qt5()
    {
        m_receiver.moveToThread(&m_thread);
        m_thread.start();
        QMetaObject::invokeMethod(
            &m_receiver, [this] { (new QTimer(&m_receiver))->start(3'600'000); }, Qt::BlockingQueuedConnection);
    }
    ~Qt5() override
    {
        QMetaObject::invokeMethod(
            &m_receiver, [this] { qDeleteAll(m_receiver.children()); }, Qt::BlockingQueuedConnection);
        m_thread.quit();
        m_thread.wait();
    }

    void post(Work work, void* argument) override
    {
        QMetaObject::invokeMethod(
            &m_receiver, [work, argument] { work(argument); }, Qt::QueuedConnection);
    }

private:
    QThread m_thread;
    QObject m_receiver;
};

}  // namespace

std::unique_ptr<Peer> makeQt()
{
    return std::make_unique<Qt5>();
}

}  // namespace bench
