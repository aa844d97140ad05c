<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="he_IL">
<context>
    <name>varno::InAppSettingsView</name>
    <message>
        <source>Done</source>
        <translation>סיום</translation>
    </message>
</context>
<context>
    <name>varno::VarnoApp</name>
    <message>
        <source>Varno needs a display, and there is none that it can reach.</source>
        <translation>‏Varno צריך מסך, ואין מסך שאפשר להגיע אליו.</translation>
    </message>
</context>
</TS>
