#pragma once
// An image with the regions below it, as Python holds it: objects of Python name a node of a tree that they
// keep alive, and find out when the node is gone.

#include <map>
#include <memory>

#include "kalvo/image/kximage.h"
#include "common/image_file.h"
#include "common/pixel_types.h"
#include "common/region.h"

namespace Module {

using Base = Zelkor::Kalvo::RegionBase;
using Extent = Zelkor::Kalvo::GenericRoiExtent;

class Tree {
public:
    // Takes over an image, whose regions become the tree's.
    explicit Tree(App::Object image);
    ~Tree();
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;

    Base& Image() const { return static_cast<Base&>(*m_image); }

    // The number of a node that is in the tree; numbers are never used again.
    unsigned NumberOf(const Base& node) const { return m_numbers.at(&node); }
    bool Has(const Base* node, unsigned number) const;

    // Adds a region to a node. Throws unless it lies inside of that.
    Base& Add(Base& parent, const Extent& extent);
    // Deletes a region and all below it.
    void Remove(Base& region);

private:
    void Count(Base& node);

    App::Object m_image;
    std::map<const Base*, unsigned> m_numbers;
    unsigned m_lastNumber = 0;
};

// An image or a region.
class Node {
public:
    explicit Node(std::shared_ptr<Tree> tree) : Node(tree, tree->Image()) {}
    Node(std::shared_ptr<Tree> tree, Base& base)
        : m_tree(std::move(tree)), m_base(&base), m_number(m_tree->NumberOf(base)) {}

    // Throws when the region was removed.
    Base& Get() const;
    const std::shared_ptr<Tree>& GetTree() const { return m_tree; }
    bool IsImage() const { return m_base == &m_tree->Image(); }
    bool operator==(const Node& other) const = default;

private:
    std::shared_ptr<Tree> m_tree;
    Base* m_base;
    unsigned m_number;
};

// Calls `operation(typed)` with an image or a region as what it is.
template <class Operation>
void As(Base& base, const Operation& operation) {
    App::ForPixel<Zelkor::Kalvo::PixelTypes>(base.GetType(), [&]<class Pixel>(std::type_identity<Pixel>) {
        operation(static_cast<KxROI<Pixel>&>(base));
    });
}

}  // namespace Module
