// SPDX-License-Identifier: Apache-2.0

// Stands for Microsoft's standard library where only names and sizes matter: its class and struct
// tags, its template parameters, and the sizes and alignments of its release build for 64-bit
// Windows.
#pragma once

using size_t = unsigned long long;
#define offsetof(type, member) __builtin_offsetof(type, member)

namespace std {

using ::size_t;
using uint8_t = unsigned char;
using uint16_t = unsigned short;
using int32_t = int;
using uint32_t = unsigned int;
using uint64_t = unsigned long long;

template <class Character>
struct char_traits;
template <class Value>
class allocator;
template <class Value = void>
struct less;
template <class First, class Second>
struct pair {
    First first;
    Second second;
};

template <class Type>
inline constexpr bool is_standard_layout_v = __is_standard_layout(Type);

// A class of `size` bytes that can be made, copied and destroyed.
#define STUB_VALUE(name, size)           \
    alignas(8) unsigned char held[size]; \
                                         \
public:                                  \
    name();                              \
    name(const name&);                   \
    name& operator=(const name&);        \
    ~name()

template <class Character, class Traits = char_traits<Character>,
          class Allocator = allocator<Character>>
class basic_string {
    STUB_VALUE(basic_string, 32);
};
using string = basic_string<char>;
using wstring = basic_string<wchar_t>;

template <class Value, class Allocator = allocator<Value>>
class vector {
    STUB_VALUE(vector, 24);
};

// The iterator of a map has its name from these.
template <class Value>
struct _Tree_simple_types;
template <class Types>
class _Tree_val;
template <class Tree>
class _Tree_iterator;

template <class Key, class Value, class Compare = less<Key>,
          class Allocator = allocator<pair<const Key, Value>>>
class map {
    STUB_VALUE(map, 16);
    using iterator = _Tree_iterator<_Tree_val<_Tree_simple_types<pair<const Key, Value>>>>;
};

class mutex {
    alignas(8) unsigned char held[80];

public:
    mutex();
    ~mutex();
    mutex(const mutex&) = delete;
    mutex& operator=(const mutex&) = delete;
};

template <class Character, class Traits = char_traits<Character>,
          class Allocator = allocator<Character>>
class basic_stringstream;
using wstringstream = basic_stringstream<wchar_t>;

}  // namespace std
