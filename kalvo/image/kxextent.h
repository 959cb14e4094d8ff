#pragma once
// Extents that tell of their changes, alone and in lists.

#include <memory>

#include "kalvo/frame/kxexception.h"
#include "kalvo/image/kxlistener.h"
#include "kalvo/image/kxroiextent.h"

namespace Zelkor {
namespace Kalvo {

/// A value that is read and assigned through two functions of its owner. One without them throws
/// `KX_ERROR_INTERNAL`. Assigning a property to another copies the value.
template <class Owner, class T>
class Property {
public:
    using Getter = T (*)(const Owner&);
    using Setter = void (*)(Owner&, T);

    Property() = default;
    Property(Owner* pOwner, Getter pfnGetter, Setter pfnSetter)
        : m_pOwner(pOwner), m_pfnGetter(pfnGetter), m_pfnSetter(pfnSetter) {}
    Property(const Property&) = delete;
    ~Property() = default;

    /// Reads the value.
    operator T() const { return m_pfnGetter ? m_pfnGetter(*m_pOwner) : throw Exception(KX_ERROR_INTERNAL); }
    /// Assigns the value.
    Property& operator=(T value) {
        m_pfnSetter ? m_pfnSetter(*m_pOwner, value) : throw Exception(KX_ERROR_INTERNAL);
        return *this;
    }
    Property& operator=(const Property& other) { return *this = static_cast<T>(other); }

private:
    Owner* m_pOwner = nullptr;
    Getter m_pfnGetter = nullptr;
    Setter m_pfnSetter = nullptr;
};

/// An extent that calls its listeners after every assignment, whether or not the values differ.
/// @code
/// struct Redraw : Zelkor::IListener {
///     void Listen(Zelkor::IBroadcaster*) override { std::puts("moved"); }
/// } redraw;
/// Zelkor::Kalvo::GenericRoiExtentWithBroadcast extent;
/// extent.AddListener(&redraw);
/// extent.OrgX = 10;  // calls the listener
/// extent.RemoveListener(&redraw);
/// @endcode
class KX_API GenericRoiExtentWithBroadcast final : public IBroadcaster {
public:
    using IntProperty = Property<GenericRoiExtentWithBroadcast, int>;

    /// Zeros; no listeners.
    GenericRoiExtentWithBroadcast() = default;
    /// The values of `extent`; no listeners.
    GenericRoiExtentWithBroadcast(const GenericRoiExtent& extent) : m_Extent(extent) {}
    /// The values of `other`, without its listeners.
    GenericRoiExtentWithBroadcast(const GenericRoiExtentWithBroadcast& other)
        : IBroadcaster(other), m_Extent(other.GetExtent()) {}

    /// Takes the values, keeps its own listeners and calls them.
    GenericRoiExtentWithBroadcast& operator=(const GenericRoiExtentWithBroadcast& other);
    GenericRoiExtentWithBroadcast& operator=(const GenericRoiExtent& extent);

    /// The plain values.
    GenericRoiExtent GetExtent() const { return {OrgX, OrgY, Width, Height}; }
    operator GenericRoiExtent() const { return GetExtent(); }

    /// Compare the four values.
    bool operator==(const GenericRoiExtentWithBroadcast& other) const {
        return GetExtent() == other.GetExtent();
    }
    bool operator==(const GenericRoiExtent& extent) const { return GetExtent() == extent; }

    void Broadcast() override;
    void AddListener(IListener* pListener) override;
    void RemoveListener(IListener* pListener) override;
    const Utils::Vector<IListener*>& GetListeners() override;

private:
    template <std::int32_t GenericRoiExtent::*kField>
    static int Get(const GenericRoiExtentWithBroadcast& owner) {
        return owner.m_Extent.*kField;
    }
    template <std::int32_t GenericRoiExtent::*kField>
    static void Set(GenericRoiExtentWithBroadcast& owner, int n32Value) {
        owner.m_Extent.*kField = n32Value;
        owner.Broadcast();
    }

    GenericRoiExtent m_Extent;
    ListenerList m_Listeners;

public:
    /// Position in the parent, and size, in pixels. They read and assign as ints do.
    IntProperty OrgX{this, Get<&GenericRoiExtent::m_n32OrgX>, Set<&GenericRoiExtent::m_n32OrgX>};
    IntProperty OrgY{this, Get<&GenericRoiExtent::m_n32OrgY>, Set<&GenericRoiExtent::m_n32OrgY>};
    IntProperty Width{this, Get<&GenericRoiExtent::m_n32Width>, Set<&GenericRoiExtent::m_n32Width>};
    IntProperty Height{this, Get<&GenericRoiExtent::m_n32Height>, Set<&GenericRoiExtent::m_n32Height>};
};

}  // namespace Kalvo

/// A list of extents that calls its listeners when extents come and go. It owns its items, and is not told
/// of their changes unless it is added to them as a listener; it then passes them on.
///
/// Indices out of range throw `KX_ERROR_PARAMETER_1_OUT_OF_RANGE`, missing memory `KX_ERROR_ALLOCATION`; both
/// leave the list as it was.
/// @code
/// Zelkor::GenericRoiExtentBroadcastingVector extents;
/// extents.Add({0, 0, 20, 10});
/// extents[0].Width = 30;  // the list tells its own listeners, too
/// extents.Remove(0);
/// @endcode
class KX_API GenericRoiExtentBroadcastingVector final : public IBroadcaster, public IListener {
public:
    using Item = Kalvo::GenericRoiExtentWithBroadcast;

    /// An empty list with room for `n32Size` items.
    explicit GenericRoiExtentBroadcastingVector(int n32Size = 0);
    /// New items of the same values; no listeners.
    GenericRoiExtentBroadcastingVector(const GenericRoiExtentBroadcastingVector& other);
    /// Destroys the items, then calls the listeners that are left if there were any.
    ~GenericRoiExtentBroadcastingVector();

    /// Clears the list, takes new items of the values of `other` and calls its own listeners.
    GenericRoiExtentBroadcastingVector& operator=(const GenericRoiExtentBroadcastingVector& other);

    /// Appends an item; a region is taken as its extent.
    void Add(const Kalvo::GenericRoiExtent& extent);
    GenericRoiExtentBroadcastingVector& operator+=(const Kalvo::GenericRoiExtent& extent);
    GenericRoiExtentBroadcastingVector& operator+=(const KxGenericROI& region);
    /// Appends an item unless there is an equal one.
    void AddOnce(const Kalvo::GenericRoiExtent& extent);
    /// Inserts an item at `n32Index`, 0 to `NbItems()`.
    void InsertItem(const Kalvo::GenericRoiExtent& extent, int n32Index);

    /// Number of items.
    int NbItems() const { return m_Items.NbItems(); }
    /// The first index of an equal item; -1 when there is none.
    int Find(const Kalvo::GenericRoiExtent& extent) const;
    /// Whether there is an equal item.
    bool Contains(const Kalvo::GenericRoiExtent& extent) const { return Find(extent) >= 0; }
    /// An item; it lives until it is removed.
    Item& ItemAt(int n32Index) { return *m_Items[n32Index]; }
    const Item& ItemAt(int n32Index) const { return *m_Items[n32Index]; }
    Item& operator[](int n32Index) { return ItemAt(n32Index); }
    const Item& operator[](int n32Index) const { return ItemAt(n32Index); }

    /// Destroys the item at `n32Index`.
    void Remove(int n32Index);
    /// Destroys the first equal item, if there is one.
    void Remove(const Kalvo::GenericRoiExtent& extent);
    /// Destroys all items.
    void Clear() { SetSize(0); }
    /// Makes room for exactly `n32Size` items and destroys those beyond; only that calls the listeners.
    void SetSize(int n32Size);

    /// Compare the items in order.
    bool operator==(const GenericRoiExtentBroadcastingVector& other) const;

    void Broadcast() override;
    void AddListener(IListener* pListener) override;
    void RemoveListener(IListener* pListener) override;
    const Kalvo::Utils::Vector<IListener*>& GetListeners() override;
    /// Broadcasts on its own behalf.
    void Listen(IBroadcaster* pBroadcaster) override;

private:
    void InsertSilently(const Kalvo::GenericRoiExtent& extent, int n32Index);
    std::unique_ptr<Item> TakeOut(int n32Index);
    bool Truncate(int n32Size);

    Kalvo::Utils::Vector<Item*> m_Items;
    Kalvo::ListenerList m_Listeners;
};

}  // namespace Zelkor

/// The operators for callers that cannot use the classes. No exception leaves them. They return the calling
/// thread's error code and reset it; when an assignment throws, as a listener may, they return
/// `KX_ERROR_INTERNAL` and leave the code alone. A null pointer gives `KX_ERROR_INTERNAL` too.
extern "C" {

/// *pDestination = *pSource
KX_API KX_ERRORS GenericRoiExtentWithBroadcast_operatorAssign_GenericRoiExtentWithBroadcast(
    Zelkor::Kalvo::GenericRoiExtentWithBroadcast* pDestination,
    const Zelkor::Kalvo::GenericRoiExtentWithBroadcast* pSource);
KX_API KX_ERRORS GenericRoiExtentWithBroadcast_operatorAssign_GenericRoiExtent(
    Zelkor::Kalvo::GenericRoiExtentWithBroadcast* pDestination,
    const Zelkor::Kalvo::GenericRoiExtent* pSource);

/// *pbResult = (*pA == *pB), and (*pA != *pB)
KX_API KX_ERRORS
GenericRoiExtentWithBroadcast_operatorEquality_GenericRoiExtentBroadcastingVector_GenericRoiExtentBroadcastingVector(
    const Zelkor::GenericRoiExtentBroadcastingVector* pA,
    const Zelkor::GenericRoiExtentBroadcastingVector* pB, bool* pbResult);
KX_API KX_ERRORS
GenericRoiExtentWithBroadcast_operatorInequality_GenericRoiExtentBroadcastingVector_GenericRoiExtentBroadcastingVector(
    const Zelkor::GenericRoiExtentBroadcastingVector* pA,
    const Zelkor::GenericRoiExtentBroadcastingVector* pB, bool* pbResult);
}
