#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <new>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

namespace busquill {

/// An array of plain values, initially zero. Memory is taken only where something is written: a
/// capture's range may be far larger than the samples that it holds.
template <typename T>
class ZeroedArray {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    using value_type = T;
    using iterator = T*;
    using const_iterator = const T*;

    ZeroedArray() = default;
    ZeroedArray(std::initializer_list<T> values) : ZeroedArray(std::span<const T>(values)) {}
    ZeroedArray(const std::vector<T>& values) : ZeroedArray(std::span<const T>(values)) {}
    ZeroedArray(const ZeroedArray& other) : ZeroedArray(std::span<const T>(other)) {}
    ZeroedArray(ZeroedArray&& other) noexcept
        : values_(std::move(other.values_)), size_(std::exchange(other.size_, 0)) {}
    ZeroedArray& operator=(ZeroedArray other) noexcept {
        std::swap(values_, other.values_);
        std::swap(size_, other.size_);
        return *this;
    }
    ~ZeroedArray() = default;

    /// Replaces the content by `count` zeros.
    void Reset(std::size_t count) {
        clear();
        if (count > 0) {
            values_.reset(static_cast<T*>(std::calloc(count, sizeof(T))));
            if (!values_) {
                throw std::bad_alloc();
            }
            size_ = count;
        }
    }
    void clear() noexcept {
        values_.reset();
        size_ = 0;
    }

    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] bool empty() const noexcept { return size_ == 0; }
    [[nodiscard]] T* data() noexcept { return values_.get(); }
    [[nodiscard]] const T* data() const noexcept { return values_.get(); }
    [[nodiscard]] T* begin() noexcept { return data(); }
    [[nodiscard]] const T* begin() const noexcept { return data(); }
    [[nodiscard]] T* end() noexcept { return data() + size_; }
    [[nodiscard]] const T* end() const noexcept { return data() + size_; }
    [[nodiscard]] T& operator[](std::size_t index) noexcept { return data()[index]; }
    [[nodiscard]] const T& operator[](std::size_t index) const noexcept { return data()[index]; }
    [[nodiscard]] T& front() noexcept { return *begin(); }
    [[nodiscard]] const T& front() const noexcept { return *begin(); }

    friend bool operator==(const ZeroedArray& a, const ZeroedArray& b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }

private:
    struct Freer {
        void operator()(T* values) const noexcept { std::free(values); }
    };

    explicit ZeroedArray(std::span<const T> values) {
        Reset(values.size());
        std::copy(values.begin(), values.end(), begin());
    }

    std::unique_ptr<T[], Freer> values_;
    std::size_t size_ = 0;
};

} // namespace busquill
