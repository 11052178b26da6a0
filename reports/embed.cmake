# Writes OUTPUT, a C++ file with the text of RULES.
file(READ ${RULES} json)
file(WRITE ${OUTPUT} "#include \"reports/check.h\"

const char *const reports::builtInRulesText = R\"json(${json})json\";
")
