// Small sets of enumeration values, as the framework's set types: bit n stands for the value n.
//
// `Storage` fixes the width of the set where its bits reach a file or a stream; `Mask` holds the bits
// that name declared values, and `FromBits` drops the others, so a set read from a stream never
// holds a value its enumeration lacks.
#pragma once

#include <cstdint>
#include <initializer_list>

namespace vl {

template <class E, class Storage = std::uint32_t, Storage Mask = static_cast<Storage>(~Storage(0))>
class TFlagSet {
public:
    constexpr TFlagSet() = default;
    constexpr TFlagSet(E Flag) : FBits(Bit(Flag)) {}
    constexpr TFlagSet(std::initializer_list<E> Flags) {
        for (E f : Flags) FBits = static_cast<Storage>(FBits | Bit(f));
    }

    constexpr bool Contains(E Flag) const { return (FBits & Bit(Flag)) != 0; }
    constexpr bool Empty() const { return FBits == 0; }
    constexpr Storage Bits() const { return FBits; }
    constexpr TFlagSet& Include(E Flag) {
        FBits = static_cast<Storage>(FBits | Bit(Flag));
        return *this;
    }
    constexpr TFlagSet& Exclude(E Flag) {
        FBits = static_cast<Storage>(FBits & ~Bit(Flag));
        return *this;
    }
    constexpr TFlagSet operator|(TFlagSet Other) const { return FromBits(FBits | Other.FBits); }
    constexpr TFlagSet operator&(TFlagSet Other) const { return FromBits(FBits & Other.FBits); }
    constexpr TFlagSet operator-(TFlagSet Other) const { return FromBits(FBits & ~Other.FBits); }
    constexpr TFlagSet& operator|=(TFlagSet Other) { return *this = *this | Other; }
    constexpr TFlagSet& operator-=(TFlagSet Other) { return *this = *this - Other; }
    friend constexpr bool operator==(TFlagSet, TFlagSet) = default;

    static constexpr TFlagSet FromBits(std::uint64_t Bits) {
        TFlagSet s;
        s.FBits = static_cast<Storage>(Bits & Mask);
        return s;
    }

private:
    static constexpr Storage Bit(E Flag) {
        return static_cast<Storage>(Storage(1) << static_cast<unsigned>(Flag));
    }
    Storage FBits = 0;
};

} // namespace vl
