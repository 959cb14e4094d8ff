// Walks over listeners that may come and go meanwhile. The list knows its walks and tells them.

#include "kalvo/image/kxlistener.h"

namespace Zelkor::Kalvo {

// Listeners from `next` to `end` are still to be called; those added after the start stand behind `end`.
struct ListenerList::Walk {
    explicit Walk(ListenerList& walked)
        : list(&walked), outer(walked.m_pInnermostWalk), end(walked.m_Listeners.NbItems()) {
        list->m_pInnermostWalk = this;
    }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;
    ~Walk() {
        if (list) list->m_pInnermostWalk = outer;
    }

    void Forget(int index) {
        if (index < next) --next;
        if (index < end) --end;
    }

    ListenerList* list;  // null once it has been destroyed
    Walk* const outer;
    int next = 0;
    int end;
};

ListenerList::~ListenerList() {
    for (Walk* walk = m_pInnermostWalk; walk; walk = walk->outer) walk->list = nullptr;
}

void ListenerList::Add(IListener* pListener) {
    if (pListener) m_Listeners.Add(pListener);
}

void ListenerList::Remove(IListener* pListener) {
    const int index = m_Listeners.Find(pListener);
    if (index < 0) return;
    m_Listeners.Remove(index);
    for (Walk* walk = m_pInnermostWalk; walk; walk = walk->outer) walk->Forget(index);
}

bool ListenerList::Call(IBroadcaster* pBroadcaster) {
    Walk walk(*this);
    while (walk.list && walk.next < walk.end) m_Listeners[walk.next++]->Listen(pBroadcaster);
    return walk.list != nullptr;
}

}  // namespace Zelkor::Kalvo
