// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "textnumbers.h"

namespace {

// The text's characters as they are: utf16() would copy a string whose
// characters are static to end them with a zero, and make a null text
// empty.
std::u16string_view keyOf(const QString &text)
{
    return std::u16string_view(reinterpret_cast<const char16_t *>(text.constData()), std::size_t(text.size()));
}

} // namespace

int TextNumbers::numberOf(const QString &text)
{
    const auto found = numbers.find(keyOf(text));
    if (found != numbers.end())
        return found->second;
    const int number = int(texts.size());
    texts.append(text);
    numbers.emplace(keyOf(texts.constLast()), number);
    return number;
}

void TextNumbers::clear()
{
    texts.clear();
    numbers.clear();
}

void TextNumbers::forgetLookups()
{
    std::unordered_map<std::u16string_view, int>().swap(numbers);
}
