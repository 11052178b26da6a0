# Writes OUTPUT, a C++ file with the texts of RULES and STYLE.
file(READ ${RULES} rules)
file(READ ${STYLE} style)
file(WRITE ${OUTPUT} "namespace reports {

extern const char *const builtInRulesText;
const char *const builtInRulesText = R\"text(${rules})text\";
extern const char *const pageStyle;
const char *const pageStyle = R\"text(${style})text\";

} // namespace reports
")
