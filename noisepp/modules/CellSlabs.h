#pragma once

// The blocks of cells that the points of a run search, kept as one list of x slabs.
//
// A point of a cellular generator looks at the block of cells within `reach` cells of its own.
// Neighbouring cells along x share all but one x slab of their blocks, so a run works its
// blocks out slab by slab: a point in the same cell as the one before it needs nothing new, a
// point in the next cell along x needs one slab, any other point a whole block. Each point
// then searches the slabs from its block's first one on, whatever cells its neighbours lie in.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "noisepp/modules/CellIndex.h"

namespace noisepp {

/// Numbers per cell of a stretch of blocks, slab after slab: a slab holds the cells of one x of
/// a block in a fixed order, each number in a column of its own (`Columns` columns of at most
/// `Cells` cells). Lives on the stack of one run and never allocates.
template <std::size_t Columns, std::size_t Cells, class Number = double>
class CellSlabs {
public:
    /// `slabSize` cells per slab, `blockSlabs` slabs per block.
    CellSlabs(std::size_t slabSize, std::size_t blockSlabs)
        : mSlabSize(slabSize), mBlockSlabs(blockSlabs) {}

    std::size_t slabSize() const { return mSlabSize; }
    std::size_t blockSlabs() const { return mBlockSlabs; }
    std::size_t count() const { return mCount; }
    bool hasRoomFor(std::size_t slabs) const { return (mCount + slabs) * mSlabSize <= Cells; }

    const Number* column(std::size_t c) const { return mColumns[c]; }
    Number* column(std::size_t c) { return mColumns[c]; }
    /// Where column c of the next slab goes; it joins the list with addSlab().
    Number* nextSlab(std::size_t c) { return mColumns[c] + mCount * mSlabSize; }
    void addSlab() { ++mCount; }

    /// Slabs whose numbers are worked out in one go once several have been added: the slabs
    /// from firstPending() on joined the list since the last markWorkedOut().
    std::size_t firstPending() const { return mWorkedOut; }
    void markWorkedOut() { mWorkedOut = mCount; }

    /// Drops all but the last `slabs` slabs, which move to the front.
    void keepLast(std::size_t slabs) {
        const std::size_t from = (mCount - slabs) * mSlabSize;
        const std::size_t to = mCount * mSlabSize;
        for (Number* column : mColumns)
            std::copy(column + from, column + to, column);
        mWorkedOut = slabs - std::min(slabs, mCount - mWorkedOut);
        mCount = slabs;
    }

private:
    std::size_t mSlabSize;
    std::size_t mBlockSlabs;
    std::size_t mCount = 0;
    std::size_t mWorkedOut = 0;
    Number mColumns[Columns][Cells];
};

/// The lattice cells of the points of a run.
struct RunCells {
    const std::int32_t* x = nullptr;
    const std::int32_t* y = nullptr;
    const std::int32_t* z = nullptr;
    std::size_t count = 0;
};

/// Gives point i the first slab of its block in `firstSlab[i]`, the block spanning x cells
/// cells.x[i] - reach ... cells.x[i] + reach. Slabs are added through appendSlab(cx, iy, iz),
/// which fills the slab of x cell cx of the blocks around (., iy, iz) and adds it. When the
/// list is full, evaluate(begin, end) is called for the points that have their blocks so far
/// before earlier slabs are dropped; it is called once more for the rest at the end.
template <class Slabs, class AppendSlab, class Evaluate>
void walkBlockSlabs(const RunCells& cells, std::int32_t reach, Slabs& slabs,
                    std::int32_t* firstSlab, AppendSlab&& appendSlab, Evaluate&& evaluate) {
    const std::size_t block = slabs.blockSlabs();
    std::size_t done = 0;
    std::int32_t blockX = 0, blockY = 0, blockZ = 0;
    std::int32_t blockFirst = -1;
    for (std::size_t i = 0; i < cells.count; ++i) {
        const std::int32_t ix = cells.x[i];
        const std::int32_t iy = cells.y[i];
        const std::int32_t iz = cells.z[i];
        const bool sameLine = blockFirst >= 0 && iy == blockY && iz == blockZ;
        if (sameLine && ix == blockX) {
            firstSlab[i] = blockFirst;
            continue;
        }
        if (sameLine && ix == wrapAdd(blockX, 1)) {
            // All but one slab of the next block are the current one's: slide it by one slab.
            if (!slabs.hasRoomFor(1)) {
                evaluate(done, i);
                done = i;
                slabs.keepLast(block - 1);
            }
            appendSlab(wrapAdd(ix, reach), iy, iz);
        } else {
            if (!slabs.hasRoomFor(block)) {
                evaluate(done, i);
                done = i;
                slabs.keepLast(0);
            }
            for (std::int32_t s = -reach; s <= reach; ++s)
                appendSlab(wrapAdd(ix, s), iy, iz);
        }
        blockX = ix;
        blockY = iy;
        blockZ = iz;
        blockFirst = static_cast<std::int32_t>(slabs.count() - block);
        firstSlab[i] = blockFirst;
    }
    evaluate(done, cells.count);
}

}  // namespace noisepp
