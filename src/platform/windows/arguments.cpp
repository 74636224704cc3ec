#include "platform/arguments.h"

#include <windows.h>

#include <shellapi.h>

#include <cwchar>
#include <string>
#include <vector>

#include "platform/windows/wide.h"

namespace vrel {

// What main was given has lost the characters that the system's code page lacks.
char** ArgumentsInUtf8(int* argc, char** argv) {
    // They stay for as long as the program runs, as the words of main do, and so does the null behind them.
    static std::vector<std::string> words;
    static std::vector<char*> pointers;
    wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), argc);
    if (wide == nullptr)
        return argv;
    for (int i = 0; i < *argc; ++i)
        words.push_back(Utf8Text(wide[i], std::wcslen(wide[i])));
    LocalFree(wide);
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers.data();
}

}  // namespace vrel
