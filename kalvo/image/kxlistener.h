#pragma once
// Telling listeners that something has changed.

#include "kalvo/base/kxexport.h"
#include "kalvo/measure/kxutilsvector.h"

namespace Zelkor {

class IBroadcaster;

/// Who is told of changes. A listener must be removed from its broadcasters before it is destroyed.
/// @code
/// struct Counter : Zelkor::IListener {
///     void Listen(Zelkor::IBroadcaster*) override { ++calls; }
///     int calls = 0;
/// } counter;
/// Zelkor::Kalvo::GenericRoiExtentWithBroadcast extent;
/// extent.AddListener(&counter);
/// extent.Width = 5;
/// extent.RemoveListener(&counter);  // before it is destroyed
/// @endcode
class KX_API IListener {
public:
    /// Called by `pBroadcaster` after it has changed, on the thread that changed it.
    virtual void Listen(IBroadcaster* pBroadcaster) = 0;

protected:
    ~IListener() = default;
};

/// Who tells of changes. Listeners are called in the order in which they were added, and belong to whoever
/// added them. A listener may change the broadcaster, which broadcasts again, add and remove listeners and
/// destroy the broadcaster: a broadcast goes to those that were there at its start and still are when their
/// turn comes. An exception that a listener throws ends the broadcast and goes to whoever made the change.
class KX_API IBroadcaster {
public:
    /// Calls every listener with this object.
    virtual void Broadcast() = 0;
    /// Adds a listener; one that is added twice is called twice. Null is ignored. Throws
    /// `KX_ERROR_ALLOCATION`, with nothing changed, when there is no memory.
    virtual void AddListener(IListener* pListener) = 0;
    /// Removes a listener once; nothing happens when it is not there.
    virtual void RemoveListener(IListener* pListener) = 0;
    /// The listeners; the list belongs to this object.
    virtual const Kalvo::Utils::Vector<IListener*>& GetListeners() = 0;

protected:
    ~IBroadcaster() = default;
};

namespace Kalvo {

/// The listeners of a broadcaster, and the broadcasts to them that are under way.
class KX_API ListenerList {
public:
    ListenerList() = default;
    ListenerList(const ListenerList&) = delete;
    ListenerList& operator=(const ListenerList&) = delete;
    ~ListenerList();

    /// As the operations of `IBroadcaster`.
    void Add(IListener* pListener);
    void Remove(IListener* pListener);
    const Utils::Vector<IListener*>& Get() const { return m_Listeners; }

    /// Calls the listeners with `pBroadcaster`; false when one of them has destroyed this list.
    bool Call(IBroadcaster* pBroadcaster);

private:
    struct Walk;

    Utils::Vector<IListener*> m_Listeners;
    Walk* m_pInnermostWalk = nullptr;
};

}  // namespace Kalvo
}  // namespace Zelkor
