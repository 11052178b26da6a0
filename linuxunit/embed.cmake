# Writes OUTPUT, a C++ file with the text of SCHEMA.
file(READ ${SCHEMA} json)
file(WRITE ${OUTPUT} "#include \"linuxunit/machine/Machine.h\"

const char *const linuxunit::machineSchema = R\"json(${json})json\";
")
