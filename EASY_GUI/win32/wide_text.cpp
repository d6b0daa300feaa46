#include "EASY_GUI/win32/wide_text.h"

#include "EASY_GUI/services/text.h"

namespace korvane
{

static_assert(sizeof(wchar_t) == sizeof(char16_t));

std::wstring toWide(std::string_view utf8)
{
    const std::u16string text = utf16FromUtf8(utf8);
    return std::wstring(text.begin(), text.end());
}

std::string fromWide(std::wstring_view wide)
{
    return utf8FromUtf16(std::u16string(wide.begin(), wide.end()));
}

} // namespace korvane
