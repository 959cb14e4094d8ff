#pragma once
// The regions that a user draws on an image: its own tree, whose handles do the work.

#include <memory>
#include <string>
#include <vector>

#include "kalvo/image/kximage.h"
#include "transform.h"

namespace View {

using Region = Zelkor::Kalvo::RegionBase;
using Extent = Zelkor::Kalvo::GenericRoiExtent;

enum class Mask { None, Ellipse, Ring };

class Regions {
public:
    // Takes over the regions that the image has from an archive.
    explicit Regions(KxGenericROI& image);
    ~Regions();
    Regions(const Regions&) = delete;
    Regions& operator=(const Regions&) = delete;

    // Adds copies of the regions of another image.
    void AddCopies(const KxGenericROI& image);
    // Adds a region, in pixels of its parent; a null parent is the image.
    Region* Add(KxGenericROI* parent, const Extent& extent);
    // Takes a region and all below it out of the tree.
    void Remove(Region& region);
    // Places a region by its position in the image, as far as its parent reaches.
    void Place(Region& region, const Extent& extentInImage);
    // Moves a region inside its parent.
    void Shift(Region& region, int dx, int dy);
    void SetMask(Region& region, Mask mask);
    Mask GetMask(const Region& region) const;

    // What lies under a point of the window: the selected region first, then the last one that has the point.
    struct Hit {
        Region* region = nullptr;
        KX_HANDLES handle = KX_HANDLE_NONE;
        int x = 0, y = 0;
        Extent extent;
    };
    Hit Find(int x, int y, const Transform& transform, Region* selected);
    // Moves what was found to another point; a region that is moved as a whole stays as large as it is.
    void Drag(const Hit& hit, int x, int y, const Transform& transform);

    // The tree as it is, parents before children. Regions once made stay alive, so it can be brought back.
    struct Placed {
        Region* region;
        KxGenericROI* parent;
        Extent extent;
        Mask mask;
        bool operator==(const Placed&) const = default;
    };
    using State = std::vector<Placed>;
    State Store() const;
    void Restore(const State& state);

private:
    struct Owned {
        std::unique_ptr<Region> region;
        Mask mask = Mask::None;
    };

    void Attach(Region& region, KxGenericROI& parent);
    void Detach(Region& region);
    void MakeMasks();
    Owned& Find(const Region& region);
    template <class Operation>
    void As(KxGenericROI& object, const Operation& operation) const;

    KxGenericROI& m_image;
    std::vector<Owned> m_regions;  // in the tree or, for those who undo, out of it
};

}  // namespace View
