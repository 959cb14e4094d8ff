// Regions are allocated one by one, and leave the tree before their memory goes.

#include "tree.h"

namespace Module {

Tree::Tree(App::Object image) : m_image(std::move(image)) { Count(Image()); }

// Regions that a file brought are deleted by the image, others are ours.
Tree::~Tree() {
    while (m_image->GetFirstSubROI()) Remove(static_cast<Base&>(*m_image->GetFirstSubROI()));
}

void Tree::Count(Base& node) {
    m_numbers[&node] = ++m_lastNumber;
    for (auto* child = node.GetFirstSubROI(); child; child = child->GetNextSiblingROI())
        Count(static_cast<Base&>(*child));
}

bool Tree::Has(const Base* node, unsigned number) const {
    const auto found = m_numbers.find(node);
    return found != m_numbers.end() && found->second == number;
}

Base& Tree::Add(Base& parent, const Extent& extent) {
    Base* added = nullptr;
    As(parent, [&]<class Pixel>(KxROI<Pixel>& typed) {
        auto region = std::make_unique<KxROI<Pixel>>();
        App::AttachPart(*region, typed, extent);
        added = region.release();
    });
    m_numbers[added] = ++m_lastNumber;
    return *added;
}

void Tree::Remove(Base& region) {
    while (region.GetFirstSubROI()) Remove(static_cast<Base&>(*region.GetFirstSubROI()));
    m_numbers.erase(&region);
    delete &region;
}

Base& Node::Get() const {
    if (!m_tree->Has(m_base, m_number))
        throw App::Failure{"the region was removed", KX_ERROR_ROI_HAS_NO_PARENT};
    return *m_base;
}

}  // namespace Module
