#include "support/HostileJson.h"

namespace {

using HostileJson::Case;

QByteArray nested(const char* open, int depth, const char* close)
{
    return QByteArray(open).repeated(depth) + "1" + QByteArray(close).repeated(depth);
}

QList<Case> otherTypes()
{
    return {{"null", "null", true},
            {"true", "true", true},
            {"false", "false", true},
            {"number", "5", true},
            {"empty text", "\"\"", true},
            {"text", "\"text\"", true},
            {"empty list", "[]", true},
            {"list of everything", "[null,true,1,\"x\",[],{}]", true},
            {"empty object", "{}", true},
            {"object", "{\"type\":{\"type\":[]},\"data\":{},\"users\":{\"0\":1}}", true},
            {"object with numbers as names", "{\"0\":\"a\",\"1\":\"b\",\"length\":2}", true}};
}

QList<Case> numbers()
{
    return {{"minus zero", "-0", true},
            {"fraction", "1.5", true},
            {"capital exponent", "1E+2", true},
            {"beyond int", "2147483648", true},
            {"below int", "-2147483649", true},
            {"beyond 2^53", "9007199254740993", true},
            {"beyond 64 bits", "18446744073709551616", true},
            {"below 64 bits", "-9223372036854775809", true},
            {"largest double", "1.7976931348623157e308", true},
            {"smallest double", "5e-324", true},
            {"underflow", "1e-400", false},
            {"hundred digits", QByteArray(100, '9'), true},
            {"ten thousand digits", "0." + QByteArray(10000, '1'), true},
            {"overflow", "1e400", false},
            {"negative overflow", "-1e400", false},
            {"huge exponent", "1e99999999999999999999", false},
            {"leading zero", "012", false},
            {"minus alone", "-", false},
            {"plus", "+1", false},
            {"no integer part", ".5", true},
            {"no fraction", "1.", true},
            {"no exponent", "1e", false},
            {"hexadecimal", "0x10", false},
            {"NaN", "NaN", false},
            {"Infinity", "Infinity", false},
            {"minus Infinity", "-Infinity", false},
            {"two minus", "--1", false},
            {"blank inside", "1 000", false},
            {"full-width digit", "\xef\xbc\x91", false}};
}

QList<Case> texts()
{
    return {{"escaped NUL", "\"a\\u0000b\"", true},
            {"all escapes", R"("\"\\\/\b\f\n\r\t\u00e9")", true},
            {"surrogate pair", R"("\ud83d\ude00")", true},
            {"lone high surrogate", R"("\ud800")", true},
            {"lone low surrogate", R"("\udc00")", true},
            {"surrogates the wrong way round", R"("\udc00\ud800")", true},
            {"high surrogate and text", R"("\ud800x")", true},
            {"noncharacter", R"("\uffff")", true},
            {"byte order mark inside", "\"\\ufeff\"", true},
            {"text direction", "\"\\u202e\"", true},
            {"line separator", "\"\xe2\x80\xa8\"", true},
            {"delete", "\"\x7f\"", true},
            {"markup", R"("<script>alert(1)</script>")", true},
            {"long", '"' + QByteArray(100000, 'x') + '"', true},
            {"no end", "\"text", false},
            {"end escaped", "\"text\\\"", false},
            {"single quotes", "'text'", false},
            {"no quotes", "text", false},
            {"short code", R"("\u00a")", false},
            {"no code", R"("\u")", false},
            {"code that is no number", R"("\u00zz")", false}};
}

QList<Case> structures()
{
    return {{"repeated name", R"({"type":"join","type":"pause"})", true},
            {"repeated object", R"({"a":{"x":1},"a":{"y":[2]},"a":3})", true},
            {"empty name", R"({"":1,"":{}})", true},
            {"name of a lone surrogate", R"({"\ud800":1})", true},
            {"name with NUL", R"({"type\u0000":"join"})", true},
            {"property of every object", R"({"__proto__":{"type":"join"},"constructor":1})", true},
            {"lists within lists", nested("[", 500, "]"), true},
            {"objects within objects", nested("{\"a\":", 500, "}"), true},
            {"deeper than is read", nested("[", 1100, "]"), false},
            {"objects deeper than is read", nested("{\"a\":", 1100, "}"), false},
            {"opened 100000 times", QByteArray(100000, '['), false},
            {"objects opened 100000 times", QByteArray("{\"a\":").repeated(100000), false},
            {"many elements", '[' + QByteArray("0,").repeated(10000) + "0]", true},
            {"comma at the end", "[1,]", false},
            {"comma in front", "[,1]", false},
            {"two commas", "[1,,2]", false},
            {"comma at an object's end", "{\"a\":1,}", false},
            {"no comma", "[1 2]", false},
            {"no colon", "{\"a\" 1}", false},
            {"two colons", "{\"a\"::1}", false},
            {"no value", "{\"a\":}", false},
            {"no name", "{:1}", false},
            {"number as a name", "{1:1}", false},
            {"name without quotes", "{a:1}", false},
            {"colon in a list", "[\"a\":1]", false},
            {"wrong bracket", "[1}", false},
            {"wrong brace", "{\"a\":1]", false},
            {"closed twice", "[]]", false},
            {"not closed", "[1", false},
            {"object not closed", "{\"a\":1", false},
            {"nothing", "", true},
            {"blanks", " \t\r\n1 \t\r\n", true},
            {"form feed", "\f1", false},
            {"no-break space",
             "\xc2\xa0"
             "1",
             false},
            {"comment", "/* */1", false},
            {"line comment", "1//", false},
            {"capitals", "TRUE", false},
            {"word cut off", "nul", false},
            {"word and more", "nullx", false},
            {"NUL", QByteArray("1\0", 2), false}};
}

} // namespace

QList<Case> HostileJson::values()
{
    return otherTypes() + numbers() + texts() + structures();
}
