<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>Drawing</name>
    <message>
        <source>Drawing</source>
        <translation>Zeichnung</translation>
    </message>
</context>
<context>
    <name>Join</name>
    <message>
        <source>QR code of %1</source>
        <translation>QR-Code von %1</translation>
    </message>
</context>
<context>
    <name>Main</name>
    <message>
        <source>Drawing</source>
        <translation>Zeichnung</translation>
    </message>
    <message>
        <source>Slate</source>
        <translation>Tafel</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Projector</source>
        <translation>Projektor</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Hell</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Dunkel</translation>
    </message>
    <message>
        <source>End</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Try now</source>
        <translation>Jetzt versuchen</translation>
    </message>
    <message>
        <source>Service</source>
        <translation>Dienst</translation>
    </message>
    <message>
        <source>User</source>
        <translation>Benutzer</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Passwort</translation>
    </message>
    <message>
        <source>Start a lesson</source>
        <translation>Stunde beginnen</translation>
    </message>
    <message>
        <source>Kind of question</source>
        <translation>Art der Frage</translation>
    </message>
    <message>
        <source>Multiple choice</source>
        <translation>Auswahl</translation>
    </message>
    <message>
        <source>Scale</source>
        <translation>Skala</translation>
    </message>
    <message>
        <source>Yes or no</source>
        <translation>Ja oder nein</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>Question</source>
        <translation>Frage</translation>
    </message>
    <message>
        <source>Answers, with commas between</source>
        <translation>Antworten, mit Kommas dazwischen</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Ask</source>
        <translation>Fragen</translation>
    </message>
    <message>
        <source>Show the class</source>
        <translation>Der Klasse zeigen</translation>
    </message>
    <message>
        <source>Show the drawing</source>
        <translation>Zeichnung zeigen</translation>
    </message>
    <message>
        <source>Wipe</source>
        <translation>Wegwischen</translation>
    </message>
    <message>
        <source>%1 here, %2 have not answered</source>
        <translation>%1 da, %2 ohne Antwort</translation>
    </message>
    <message>
        <source>, has not answered</source>
        <translation>, hat nicht geantwortet</translation>
    </message>
    <message>
        <source>, has left</source>
        <translation>, ist gegangen</translation>
    </message>
</context>
<context>
    <name>Projector</name>
    <message>
        <source>For the class</source>
        <translation>Für die Klasse</translation>
    </message>
    <message>
        <source>%1 here</source>
        <translation>%1 da</translation>
    </message>
    <message>
        <source>%1 of %2 answered</source>
        <translation>%1 von %2 geantwortet</translation>
    </message>
</context>
</TS>
