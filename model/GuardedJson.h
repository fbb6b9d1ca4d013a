#pragma once

#include "model/JsonMapping.h"

namespace json {

// Checks a JSON text without building its tree. Stops at an object with more keys than any record
// has, because the parser compares each new key with all earlier ones, which takes quadratic time.
// Stops at more values than any document has, because a value of two bytes of text takes some forty
// bytes in the tree.
class Guard final : public nlohmann::json_sax<Value> {
public:
    explicit Guard(qsizetype mostKeys) : m_mostKeys(mostKeys) {}

    bool null() override { return count(); }
    bool boolean(bool) override { return count(); }
    bool number_integer(number_integer_t) override { return count(); }
    bool number_unsigned(number_unsigned_t) override { return count(); }
    bool number_float(number_float_t, const string_t&) override { return count(); }
    bool string(string_t&) override { return count(); }
    bool binary(binary_t&) override { return count(); }
    bool start_object(std::size_t) override
    {
        m_keys.append(0);
        return count() && m_keys.size() <= deepest;
    }
    bool key(string_t&) override { return ++m_keys.last() <= m_mostKeys; }
    bool end_object() override
    {
        m_keys.removeLast();
        return true;
    }
    bool start_array(std::size_t) override { return count() && ++m_arrays <= deepest; }
    bool end_array() override
    {
        --m_arrays;
        return true;
    }
    bool parse_error(std::size_t, const std::string&, const nlohmann::json::exception&) override
    {
        return false;
    }

private:
    bool count() { return ++m_values <= mostValues; }

    static constexpr int deepest = 100, mostValues = 200'000;
    qsizetype m_mostKeys;
    QList<qsizetype> m_keys;    // for each open object, the number of its keys
    int m_arrays = 0, m_values = 0;
};

// Parses JSON of unknown origin. Returns a value whose is_discarded() is true for bytes that are
// not JSON or that Guard refuses. `mostKeys`: of one object.
inline Value parsedWithCare(QByteArrayView bytes, qsizetype mostKeys = 200)
{
    Guard guard(mostKeys);
    if (!Value::sax_parse(bytes.begin(), bytes.end(), &guard))
        return Value(Value::value_t::discarded);
    return Value::parse(bytes.begin(), bytes.end(), nullptr, false);
}

}    // namespace json
