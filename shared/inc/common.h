// Path macros: installation folders written as "<korctrltools>\\bin" in
// configuration files and in code, so that no file holds a drive letter.
#pragma once

#include <string>

// The text with every macro of the table replaced by its folder. Macros
// match ignoring case; an unknown one stays as it stands. The table is
// built at the first call, from the platform's folders and the registry
// values "TargetDir" and "UserData", and doesn't change for the rest of the
// run. Each macro is replaced by positions found in the text as it was
// before that macro's turn, so a second occurrence lands where the first
// replacement moved it from; the suite's files are written for exactly this.
std::string Expand(const std::string& text);

// Tests only: forgets the table, so that the next Expand builds it anew.
void Expand_ClearTable();
