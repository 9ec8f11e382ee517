// Where the parts of a value stand, gathered while it is built.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "velmora/config/value.hpp"
#include "velmora/yaml/located.hpp"

namespace velmora::yaml {

/// What is known of a key, a value, an item or the root.
struct Part {
    Span content = {};
    Span spelling = {};  ///< As LocatedValue gives it.
};

class Places {
public:
    /// A part of the innermost list or mapping that is being built: each item, and of each entry
    /// the key and then the value. The last part of all is the root.
    void add(const Part& part);
    /// Ends the innermost list or mapping, which has all its items or entries now.
    void close(const config::List& list) { close(list.identity(), list.size()); }
    void close(const config::Mapping& mapping) { close(mapping.identity(), 2 * mapping.size()); }
    /// Comes before all questions.
    void finish();

    Part root() const;
    /// The part at `index` of a list or a mapping, in the order in which they were added. Throws
    /// std::out_of_range.
    Part part(const void* collection, std::size_t index) const;

private:
    // Texts are smaller than 2 GiB.
    struct Packed {
        std::uint32_t offset, size, spelling_offset, spelling_size;
    };

    struct Collection {
        const void* identity;
        std::uint32_t first, size;  // In parts_.
    };

    static Part unpacked(const Packed& packed);
    void close(const void* identity, std::size_t size);

    std::vector<Packed> open_;  // The parts of what is being built.
    std::vector<Packed> parts_;
    std::vector<Collection> collections_;  // In the end by identity.
};

}  // namespace velmora::yaml
