# cmake -DFILE=plugins.qmltypes -P: qmlplugindump of Qt 6 still writes versions and types as Qt 5 does, and Qt 6's qmllint does
# not understand them.
file(READ "${FILE}" text)
string(REPLACE "exportMetaObjectRevisions: [0]" "exportMetaObjectRevisions: [256]" text "${text}")
string(REPLACE "\"string\"" "\"QString\"" text "${text}")
string(REPLACE "type: \"QList<QObject*>\"" "type: \"QObject\"; isList: true" text "${text}")
file(WRITE "${FILE}" "${text}")
