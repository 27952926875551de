/* Prints the table of result codes as a text of another kind: for the documentation and for other languages. */
#include <stdio.h>
#include <string.h>
#include <zprusb_text.h>

static const uint16_t codes[] = {
#define NUMBER(number, name, meaning, cause, remedy) number,
    ZPRUSB_RESULT_CODES(NUMBER)
#undef NUMBER
};

/* No text has a character that would need another form in one of these. */
static const struct {
    const char* name;
    const char* before;
    const char* row; /* with number, name, meaning, cause, remedy */
    const char* after;
} forms[] = {
    {"markdown",
     "# Result codes\n\n"
     "What a function of the library can give as its `resultCode`. The names stand in `zprusb.h` with "
     "`ZPRUSB_` before\nthem, and `zprusb_text.h` gives these texts to a "
     "program.\n\n"
     "| code | name | meaning | likely cause | what to do |\n|---|---|---|---|---|\n",
     "| %1$u | `%2$s` | %3$s | %4$s | %5$s |\n", ""},
    {"python", "\"\"\"The library's result codes: name, meaning, and what to do.\"\"\"\n\nCODES = {\n",
     "    %1$u: (\"%2$s\", \"%3$s\", \"%5$s\"),\n", "}\n"},
    {"csharp",
     "// The library's result codes in words.\nnamespace Zprusb\n{\n    public static class Codes\n    {\n"
     "        public static string Text(ushort code)\n        {\n            switch (code)\n            {\n",
     "                case %1$u: return \"%3$s %5$s\"; // %2$s\n",
     "                default: return \"This code is unknown.\";\n            }\n        }\n    }\n}\n"},
};

int main(int count, char** arguments) {
    for (size_t form = 0; form < sizeof forms / sizeof *forms; ++form) {
        if (count != 2 || strcmp(arguments[1], forms[form].name) != 0) continue;
        fputs(forms[form].before, stdout);
        for (size_t i = 0; i < sizeof codes / sizeof *codes; ++i) {
            const struct zprusb_words words = zprusb_resultWords(codes[i]);
            printf(forms[form].row, codes[i], words.name, words.meaning, words.cause, words.remedy);
        }
        fputs(forms[form].after, stdout);
        return 0;
    }
    fputs("Usage: zprusb_codes markdown|python|csharp\n", stderr);
    return 2;
}
