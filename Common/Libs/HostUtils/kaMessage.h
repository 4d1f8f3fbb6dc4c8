#pragma once

#include "kaHostUtilsExport.h"

#include <boost/any.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// A named message: values of any type under text keys, in the order in which they were first set.
///
/// A plain value: copying copies the values, so that a host may queue what it was sent. Messages are small
/// (two or three values), so keys are found by walking them.
class KA_HOSTUTILS_API kaMessage {
  public:
    using Entry = std::pair<std::string, boost::any>; ///< key and value
    using Entries = std::vector<Entry>;               ///< in the order in which keys were first set

    kaMessage() = default;
    /// A message of that name, without values.
    explicit kaMessage(std::string name);

    /// The name under which kaOpenSGUtils::call(message, flags) sends it; empty unless given.
    const std::string& getName() const { return _name; }
    void setName(std::string name); ///< Keeps the values.

    /// Puts a value under a key.
    /// @param key        compared byte by byte; may be empty.
    /// @param value      of any type that can be copied; it is read back by exactly that type.
    /// @param overwrite  whether a value that is already there gives way to the new one.
    /// @return whether the value was stored: false only for a key that is taken while `overwrite` is false.
    bool set(std::string_view key, boost::any value, bool overwrite);

    /// The value under `key`, or null. It stays valid until the message is next changed.
    const boost::any* get(std::string_view key) const;

    /// The value under `key` as a `T`, or null when there is none or it is of another type. Types are
    /// compared exactly: an int is not found as a float.
    template <class T>
    const T* get(std::string_view key) const {
        static_assert(sizeof(T) == 0 || tellsTypesApart,
                      "values are told apart by run-time type information");
        return boost::any_cast<T>(get(key));
    }

    /// All keys and values, in the order in which the keys were first set.
    const Entries& getEntries() const { return _entries; }

  private:
#if defined(__GNUC__) && !defined(__GXX_RTTI)
    static constexpr bool tellsTypesApart = false;
#else
    static constexpr bool tellsTypesApart = true;
#endif

    Entry* find(std::string_view key);

    std::string _name;
    Entries _entries;
};
