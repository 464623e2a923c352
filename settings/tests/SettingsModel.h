// The settings file written out a second time, plainly and without bounds on memory: what the store
// is compared with. Texts hold no zero characters.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

class SettingsModel
{
public:
    /// What a load of `text` (without the mark) leaves; false where the load fails.
    bool Load(const std::u16string& text)
    {
        sections.clear();
        keys.clear();
        std::u16string section;
        unsigned count = 0;
        for (const std::u16string& line : LinesOf(text)) {
            const size_t start = line.find_first_not_of(Blanks);
            if (start == line.npos || line[start] == u';')
                continue;
            if (line[start] == u'[') {
                const size_t end = line.find(u']', start);
                if (end == line.npos)
                    return false;
                section = line.substr(start + 1, end - start - 1).substr(0, 1023);
                const auto known = Find(sections, section);
                count = known == sections.end() ? 0 : known->second;
                if (!Put(sections, section, count))
                    return false;
                continue;
            }
            const size_t nameEnd = std::min(line.find_first_of(u"= \t", start), line.size());
            const size_t equals = line.find_first_not_of(Blanks, nameEnd);
            if (equals == line.npos || line[equals] != u'=')
                continue;
            const std::u16string name = line.substr(start, nameEnd - start).substr(0, 1023);
            const size_t value = line.find_first_not_of(Blanks, equals + 1);
            const bool has = value != line.npos;
            const bool taken =
                Put(keys, Composed(section, name),
                    has ? std::optional<std::u16string>(line.substr(value)) : std::nullopt);
            if (taken || !has)
                Put(sections, section, ++count);
        }
        return true;
    }

    void Set(const std::u16string& section, const std::u16string& name, const std::u16string& value)
    {
        const auto known = Find(sections, section);
        if (Put(sections, section, known == sections.end() ? 1 : known->second + 1))
            Put(keys, Composed(section, name), std::optional<std::u16string>(value));
    }

    /// The text behind the mark.
    std::u16string Saved() const
    {
        std::u16string text;
        for (const auto& [section, count] : sections) {
            if (count == 0)
                continue;
            text += u"[" + section + u"]\r\n";
            const std::u16string wanted = Composed(section, u"");
            for (const auto& [name, value] : keys) {
                if (!value)
                    break;
                const size_t place = name.find(wanted);
                if (place != name.npos)
                    text += name.substr(place + wanted.size()) + u"=" + *value + u"\r\n";
            }
            text += u"\r\n";
        }
        return text;
    }

    static std::u16string Composed(const std::u16string& section, const std::u16string& name)
    {
        return (section + u"::" + name).substr(0, 2047);
    }

    std::vector<std::pair<std::u16string, unsigned>> sections;
    std::vector<std::pair<std::u16string, std::optional<std::u16string>>> keys;

private:
    static constexpr const char16_t* Blanks = u" \t";

    static std::vector<std::u16string> LinesOf(const std::u16string& text)
    {
        std::vector<std::u16string> lines;
        for (size_t start = 0; start < text.size();) {
            const size_t end = std::min(text.find(u"\r\n", start), text.size());
            if (end - start > 16383)
                break;
            lines.push_back(text.substr(start, end - start));
            start = end + 2;
        }
        return lines;
    }

    template <class List>
    static typename List::iterator Find(List& list, const std::u16string& name)
    {
        return std::find_if(list.begin(), list.end(),
                            [&](const auto& entry) { return entry.first == name; });
    }

    template <class List, class Value>
    static bool Put(List& list, const std::u16string& name, const Value& value)
    {
        const auto known = Find(list, name);
        if (known != list.end())
            known->second = value;
        else if (list.size() < 512)
            list.emplace_back(name, value);
        else
            return false;
        return true;
    }
};
