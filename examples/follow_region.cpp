// Keeps a second view in step with a region that the user moves: extents that tell of their changes.

#include <kalvo/kalvo.h>

#include <cstdio>

// Notes where the region is whenever that changes.
class Display : public Zelkor::IListener {
public:
    explicit Display(Zelkor::Kalvo::GenericRoiExtentWithBroadcast& extent) : m_extent(extent) {
        m_extent.AddListener(this);
    }
    ~Display() { m_extent.RemoveListener(this); }

    void Listen(Zelkor::IBroadcaster*) override {
        std::printf("now at (%d, %d), %d x %d\n", int{m_extent.OrgX}, int{m_extent.OrgY}, int{m_extent.Width},
                    int{m_extent.Height});
    }

private:
    Zelkor::Kalvo::GenericRoiExtentWithBroadcast& m_extent;
};

int main() {
    KxImage<KxBW8> image(200, 200);
    KxROI<KxBW8> region(&image, 20, 20, 50, 40);
    Zelkor::Kalvo::GenericRoiExtentWithBroadcast extent(region.GetExtent());
    const Display display(extent);

    // The mouse takes the right edge at twice the size and moves it; then the inside.
    const KX_HANDLES handle = region.HitTest(140, 80, 2, 2, 0, 0);
    region.Drag(handle, 160, 80, 2, 2, 0, 0);
    extent = region.GetExtent();
    region.Drag(region.HitTest(90, 90, 2, 2, 0, 0), 110, 120, 2, 2, 0, 0);
    extent = region.GetExtent();
}

// Prints:
// now at (20, 20), 60 x 40
// now at (30, 35), 60 x 40
