// Regions of the pixel type of their image; masks are built anew after every change.

#include "regions.h"

#include <algorithm>
#include <ranges>

#include "common/pixel_types.h"

namespace View {
namespace {

constexpr float kRingRatio = 0.5f;

void CopyTexts(const KxGenericROI& from, KxGenericROI& to) {
    to.SetTitle(from.GetTitle());
    to.SetTitle(from.GetTitleUnicode());
    to.SetAuthor(from.GetAuthor());
    to.SetAuthor(from.GetAuthorUnicode());
    to.SetComment(from.GetComment());
    to.SetComment(from.GetCommentUnicode());
    to.SetDate(from.GetDate());
    to.SetDate(from.GetDateUnicode());
}

// Places a region of a size in its parent, as near to (x, y) as it can be whole.
void PlaceInside(Region& region, int x, int y, const Extent& size) {
    const auto [width, height] = std::pair(size.m_n32Width, size.m_n32Height);
    region.SetPlacement(std::clamp(x, 0, std::max(region.GetParent()->GetWidth() - width, 0)),
                        std::clamp(y, 0, std::max(region.GetParent()->GetHeight() - height, 0)), width,
                        height);
}

}  // namespace

// Calls `operation(region)` with the object as a region of the pixel type of the image.
template <class Operation>
void Regions::As(KxGenericROI& object, const Operation& operation) const {
    App::ForPixel<Zelkor::Kalvo::PixelTypes>(m_image.GetType(), [&]<class Pixel>(std::type_identity<Pixel>) {
        operation(static_cast<KxROI<Pixel>&>(object));
    });
}

Regions::Regions(KxGenericROI& image) : m_image(image) {
    std::vector<KxGenericROI*> loaded;
    for (auto* child = image.GetFirstSubROI(); child; child = child->GetNextSiblingROI())
        loaded.push_back(child);
    AddCopies(image);
    for (KxGenericROI* region : loaded) delete region;  // the tree's own
}

// Children leave before their parents.
Regions::~Regions() { Restore({}); }

void Regions::AddCopies(const KxGenericROI& image) {
    const auto add = [&](const auto& self, const KxGenericROI& from, KxGenericROI& parent) -> void {
        std::vector<const KxGenericROI*> children;
        for (auto* child = from.GetFirstSubROI(); child; child = child->GetNextSiblingROI())
            children.push_back(child);
        for (const KxGenericROI* child : children) {
            Region* copy = Add(&parent, child->GetExtent());
            CopyTexts(*child, *copy);
            self(self, *child, *copy);
        }
    };
    add(add, image, m_image);
}

Region* Regions::Add(KxGenericROI* parent, const Extent& extent) {
    As(m_image, [&]<class Pixel>(KxROI<Pixel>&) {
        m_regions.push_back({.region = std::make_unique<KxROI<Pixel>>()});
    });
    Region& region = *m_regions.back().region;
    Attach(region, parent ? *parent : m_image);
    region.SetPlacement(extent.m_n32OrgX, extent.m_n32OrgY, extent.m_n32Width, extent.m_n32Height);
    return &region;
}

void Regions::Remove(Region& region) {
    while (region.GetFirstSubROI()) Remove(static_cast<Region&>(*region.GetFirstSubROI()));
    Detach(region);
}

void Regions::Place(Region& region, const Extent& extentInImage) {
    const KxGenericROI& parent = *region.GetParent();
    const bool isChild = &parent != &m_image;
    const int parentX = isChild ? parent.GetTotalOrgX() : 0, parentY = isChild ? parent.GetTotalOrgY() : 0;
    const auto [x, width] = std::pair(extentInImage.m_n32OrgX - parentX, extentInImage.m_n32Width);
    const auto [y, height] = std::pair(extentInImage.m_n32OrgY - parentY, extentInImage.m_n32Height);
    const int left = std::clamp(x, 0, parent.GetWidth() - 1), top = std::clamp(y, 0, parent.GetHeight() - 1);
    region.SetPlacement(left, top, std::max(x + width - left, 1), std::max(y + height - top, 1));
    MakeMasks();
}

void Regions::Shift(Region& region, int dx, int dy) {
    const Extent extent = region.GetExtent();
    PlaceInside(region, extent.m_n32OrgX + dx, extent.m_n32OrgY + dy, extent);
    MakeMasks();
}

void Regions::SetMask(Region& region, Mask mask) {
    Find(region).mask = mask;
    MakeMasks();
}

Mask Regions::GetMask(const Region& region) const { return const_cast<Regions*>(this)->Find(region).mask; }

Regions::Hit Regions::Find(int x, int y, const Transform& transform, Region* selected) {
    const auto zoom = static_cast<float>(transform.zoom);
    x -= transform.panX;
    y -= transform.panY;
    const auto test = [&](Region& region) { return region.HitTest(x, y, zoom, zoom, 0, 0); };
    if (selected)
        if (const KX_HANDLES handle = test(*selected); handle > KX_HANDLE_INSIDE)
            return {selected, handle, x, y, selected->GetExtent()};
    const State state = Store();
    for (const Placed& placed : std::views::reverse(state))
        if (const KX_HANDLES handle = test(*placed.region))
            return {placed.region, handle, x, y, placed.extent};
    return {};
}

void Regions::Drag(const Hit& hit, int x, int y, const Transform& transform) {
    const auto zoom = static_cast<float>(transform.zoom);
    const auto& [region, handle, startX, startY, old] = hit;
    region->SetPlacement(old.m_n32OrgX, old.m_n32OrgY, old.m_n32Width, old.m_n32Height);
    region->HitTest(startX, startY, zoom, zoom, 0, 0);
    region->Drag(handle, x - transform.panX, y - transform.panY, zoom, zoom, 0, 0);
    if (handle == KX_HANDLE_INSIDE) PlaceInside(*region, region->GetOrgX(), region->GetOrgY(), old);
    MakeMasks();
}

Regions::State Regions::Store() const {
    State state;
    for (KxGenericROI* region = m_image.GetFirstSubROI(); region; region = region->GetNextROI(&m_image))
        state.push_back({static_cast<Region*>(region), region->GetParent(), region->GetExtent(),
                         GetMask(static_cast<Region&>(*region))});
    return state;
}

void Regions::Restore(const State& state) {
    for (const Placed& placed : std::views::reverse(Store())) Detach(*placed.region);
    for (const auto& [region, parent, extent, mask] : state) {
        Attach(*region, *parent);
        region->SetPlacement(extent.m_n32OrgX, extent.m_n32OrgY, extent.m_n32Width, extent.m_n32Height);
        Find(*region).mask = mask;
    }
    MakeMasks();
}

void Regions::Attach(Region& region, KxGenericROI& parent) {
    As(region, [&]<class Pixel>(KxROI<Pixel>& typed) { typed.Attach(&static_cast<KxROI<Pixel>&>(parent)); });
}

void Regions::Detach(Region& region) {
    As(region, [](auto& typed) { typed.Detach(); });
}

void Regions::MakeMasks() {
    for (const auto& [region, mask] : m_regions) {
        region->ResetMask();
        if (!region->GetParent()) continue;
        if (mask == Mask::Ellipse) region->SetEllipseMask(0, 0, 0, 0);
        if (mask == Mask::Ring) region->SetRingMask(kRingRatio);
    }
}

Regions::Owned& Regions::Find(const Region& region) {
    return *std::ranges::find(m_regions, &region, [](const Owned& owned) { return owned.region.get(); });
}

}  // namespace View
