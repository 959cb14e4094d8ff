// Changes come first and broadcasts last: a listener may destroy the object that calls it.

#include "kalvo/image/kxextent.h"

#include <new>

#include "kalvo/frame/boundary.h"
#include "kalvo/image/kxgenericroi.h"

namespace Zelkor {
namespace Kalvo {

GenericRoiExtentWithBroadcast& GenericRoiExtentWithBroadcast::operator=(
    const GenericRoiExtentWithBroadcast& other) {
    return *this = other.GetExtent();
}

GenericRoiExtentWithBroadcast& GenericRoiExtentWithBroadcast::operator=(const GenericRoiExtent& extent) {
    m_Extent = extent;
    Broadcast();
    return *this;
}

void GenericRoiExtentWithBroadcast::Broadcast() { m_Listeners.Call(this); }

void GenericRoiExtentWithBroadcast::AddListener(IListener* pListener) { m_Listeners.Add(pListener); }

void GenericRoiExtentWithBroadcast::RemoveListener(IListener* pListener) { m_Listeners.Remove(pListener); }

const Utils::Vector<IListener*>& GenericRoiExtentWithBroadcast::GetListeners() { return m_Listeners.Get(); }

}  // namespace Kalvo

using Kalvo::GenericRoiExtent;

GenericRoiExtentBroadcastingVector::GenericRoiExtentBroadcastingVector(int n32Size) {
    m_Items.SetSize(n32Size);
}

// The object counts as made once the first constructor has returned, so that a failure here destroys the
// items.
GenericRoiExtentBroadcastingVector::GenericRoiExtentBroadcastingVector(
    const GenericRoiExtentBroadcastingVector& other)
    : GenericRoiExtentBroadcastingVector(other.NbItems()) {
    for (int i = 0; i < other.NbItems(); ++i) InsertSilently(other[i].GetExtent(), i);
}

GenericRoiExtentBroadcastingVector::~GenericRoiExtentBroadcastingVector() {
    Kalvo::AtBoundary(nullptr, [this] { Clear(); });
    while (NbItems() > 0) TakeOut(NbItems() - 1);  // that a listener has added just now
}

GenericRoiExtentBroadcastingVector& GenericRoiExtentBroadcastingVector::operator=(
    const GenericRoiExtentBroadcastingVector& other) {
    GenericRoiExtentBroadcastingVector copy(other);
    if (!Truncate(0)) return *this;
    m_Items.Swap(copy.m_Items);
    Broadcast();
    return *this;
}

void GenericRoiExtentBroadcastingVector::InsertSilently(const GenericRoiExtent& extent, int n32Index) {
    std::unique_ptr<Item> item(new (std::nothrow) Item(extent));
    if (!item) throw Kalvo::Exception(KX_ERROR_ALLOCATION);
    m_Items.InsertItem(item.get(), n32Index);
    static_cast<void>(item.release());
}

std::unique_ptr<GenericRoiExtentBroadcastingVector::Item> GenericRoiExtentBroadcastingVector::TakeOut(
    int n32Index) {
    std::unique_ptr<Item> item(m_Items[n32Index]);
    m_Items.Remove(n32Index);
    return item;
}

// False when a listener has destroyed this object.
bool GenericRoiExtentBroadcastingVector::Truncate(int n32Size) {
    const bool loses = n32Size < NbItems();
    if (n32Size >= 0)
        while (NbItems() > n32Size) TakeOut(NbItems() - 1);
    m_Items.SetSize(n32Size);
    return !loses || m_Listeners.Call(this);
}

void GenericRoiExtentBroadcastingVector::Add(const GenericRoiExtent& extent) {
    InsertItem(extent, NbItems());
}

GenericRoiExtentBroadcastingVector& GenericRoiExtentBroadcastingVector::operator+=(
    const GenericRoiExtent& extent) {
    Add(extent);
    return *this;
}

GenericRoiExtentBroadcastingVector& GenericRoiExtentBroadcastingVector::operator+=(
    const KxGenericROI& region) {
    return *this += region.GetExtent();
}

void GenericRoiExtentBroadcastingVector::AddOnce(const GenericRoiExtent& extent) {
    if (!Contains(extent)) Add(extent);
}

void GenericRoiExtentBroadcastingVector::InsertItem(const GenericRoiExtent& extent, int n32Index) {
    InsertSilently(extent, n32Index);
    Broadcast();
}

int GenericRoiExtentBroadcastingVector::Find(const GenericRoiExtent& extent) const {
    for (int i = 0; i < NbItems(); ++i)
        if (ItemAt(i) == extent) return i;
    return -1;
}

void GenericRoiExtentBroadcastingVector::Remove(int n32Index) {
    TakeOut(n32Index);
    Broadcast();
}

void GenericRoiExtentBroadcastingVector::Remove(const GenericRoiExtent& extent) {
    if (const int index = Find(extent); index >= 0) Remove(index);
}

void GenericRoiExtentBroadcastingVector::SetSize(int n32Size) { Truncate(n32Size); }

bool GenericRoiExtentBroadcastingVector::operator==(const GenericRoiExtentBroadcastingVector& other) const {
    if (NbItems() != other.NbItems()) return false;
    for (int i = 0; i < NbItems(); ++i)
        if (!(ItemAt(i) == other.ItemAt(i))) return false;
    return true;
}

void GenericRoiExtentBroadcastingVector::Broadcast() { m_Listeners.Call(this); }

void GenericRoiExtentBroadcastingVector::AddListener(IListener* pListener) { m_Listeners.Add(pListener); }

void GenericRoiExtentBroadcastingVector::RemoveListener(IListener* pListener) {
    m_Listeners.Remove(pListener);
}

const Kalvo::Utils::Vector<IListener*>& GenericRoiExtentBroadcastingVector::GetListeners() {
    return m_Listeners.Get();
}

void GenericRoiExtentBroadcastingVector::Listen(IBroadcaster*) { Broadcast(); }

}  // namespace Zelkor

namespace {

using Zelkor::GenericRoiExtentBroadcastingVector;
using Zelkor::Kalvo::GenericRoiExtent;
using Zelkor::Kalvo::GenericRoiExtentWithBroadcast;

// An exception leaves the code that was stored before; a failure that was only stored is taken out.
template <class Operation, class... Operands>
KX_ERRORS CodeOf(Operation operation, Operands*... operands) noexcept {
    if (!(operands && ...)) return KX_ERROR_INTERNAL;
    if (Zelkor::Kalvo::ErrorOf([&] { operation(*operands...); })) return KX_ERROR_INTERNAL;
    const KX_ERRORS error = KxGetError();
    KxOk();
    return error;
}

constexpr auto kAssign = [](auto& destination, const auto& source) { destination = source; };

}  // namespace

KX_ERRORS GenericRoiExtentWithBroadcast_operatorAssign_GenericRoiExtentWithBroadcast(
    GenericRoiExtentWithBroadcast* pDestination, const GenericRoiExtentWithBroadcast* pSource) {
    return CodeOf(kAssign, pDestination, pSource);
}

KX_ERRORS GenericRoiExtentWithBroadcast_operatorAssign_GenericRoiExtent(
    GenericRoiExtentWithBroadcast* pDestination, const GenericRoiExtent* pSource) {
    return CodeOf(kAssign, pDestination, pSource);
}

KX_ERRORS
GenericRoiExtentWithBroadcast_operatorEquality_GenericRoiExtentBroadcastingVector_GenericRoiExtentBroadcastingVector(
    const GenericRoiExtentBroadcastingVector* pA, const GenericRoiExtentBroadcastingVector* pB,
    bool* pbResult) {
    return CodeOf([](const auto& a, const auto& b, bool& result) { result = a == b; }, pA, pB, pbResult);
}

KX_ERRORS
GenericRoiExtentWithBroadcast_operatorInequality_GenericRoiExtentBroadcastingVector_GenericRoiExtentBroadcastingVector(
    const GenericRoiExtentBroadcastingVector* pA, const GenericRoiExtentBroadcastingVector* pB,
    bool* pbResult) {
    return CodeOf([](const auto& a, const auto& b, bool& result) { result = a != b; }, pA, pB, pbResult);
}
