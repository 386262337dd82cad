#pragma once

// Reaches a class's private members without changing the class: access
// checks do not apply to the template arguments of an explicit
// instantiation, so the instantiation below may name a private member and
// hand its pointer out through a friend function.
//
//     ZK_PRIVATE_MEMBER(ParserSymbol, Symbol ZKJSONParser::*, &ZKJSONParser::m_symbol);
//     parser.*Member(ParserSymbol{}) = ZK_JSON_SYMBOL_WHITESPACE;
//
// Use it at global scope: the friend defined by the template and the one
// the tag declares must be the same function, so both live in the global
// namespace.

template <class Tag, typename Tag::type Pointer>
struct ZKTestPrivateMember {
    friend typename Tag::type Member(Tag) { return Pointer; }
};

#define ZK_PRIVATE_MEMBER(TagName, PointerType, Pointer) \
    struct TagName {                                     \
        using type = PointerType;                        \
        friend type Member(TagName);                     \
    };                                                   \
    template struct ZKTestPrivateMember<TagName, Pointer>
