<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>Cards</name>
    <message>
        <source>&amp;Add picture…</source>
        <translation>Bild &amp;hinzufügen …</translation>
    </message>
    <message>
        <source>Add a picture from a file</source>
        <translation>Ein Bild aus einer Datei hinzufügen</translation>
    </message>
    <message>
        <source>Add a picture</source>
        <translation>Bild hinzufügen</translation>
    </message>
    <message>
        <source>Pictures (*.%1)</source>
        <translation>Bilder (*.%1)</translation>
    </message>
    <message>
        <source>Pictures can be dropped here.</source>
        <translation>Bilder hierher ziehen.</translation>
    </message>
    <message>
        <source>Cards</source>
        <translation>Karten</translation>
    </message>
    <message>
        <source>Cards (%1 of %2)</source>
        <translation>Karten (%1 von %2)</translation>
    </message>
    <message>
        <source>Start the lesson first.</source>
        <translation>Beginnen Sie zuerst die Stunde.</translation>
    </message>
    <message>
        <source>Add a picture first.</source>
        <translation>Fügen Sie zuerst ein Bild hinzu.</translation>
    </message>
    <message>
        <source>The pictures of the lesson</source>
        <translation>Die Bilder der Stunde</translation>
    </message>
    <message>
        <source>&amp;Show to learners</source>
        <translation>Der &amp;Klasse zeigen</translation>
    </message>
    <message>
        <source>Show this card on the learners’ devices</source>
        <translation>Diese Karte auf den Geräten der Lernenden zeigen</translation>
    </message>
</context>
<context>
    <name>DeskWindow</name>
    <message>
        <source>Lesson at the desk</source>
        <translation>Stunde am Pult</translation>
    </message>
    <message>
        <source>Desk</source>
        <translation>Pult</translation>
    </message>
    <message>
        <source>Its last command: %1</source>
        <translation>Ihr letzter Befehl: %1</translation>
    </message>
    <message>
        <source>It wanted what could not be done: %1</source>
        <translation>Sie wollte, was nicht ging: %1</translation>
    </message>
    <message>
        <source>Close the desk</source>
        <translation>Pult schließen</translation>
    </message>
    <message>
        <source>Log in to your classroom</source>
        <translation>Melden Sie sich an</translation>
    </message>
    <message>
        <source>&amp;Service</source>
        <translation>&amp;Dienst</translation>
    </message>
    <message>
        <source>&amp;User name</source>
        <translation>&amp;Benutzername</translation>
    </message>
    <message>
        <source>&amp;Password</source>
        <translation>&amp;Passwort</translation>
    </message>
    <message>
        <source>Remote control</source>
        <translation>Fernbedienung</translation>
    </message>
    <message>
        <source>The service is being asked.</source>
        <translation>Der Dienst wird gefragt.</translation>
    </message>
    <message>
        <source>Fill in the service, your user name and your password first.</source>
        <translation>Tragen Sie zuerst Dienst, Benutzername und Passwort ein.</translation>
    </message>
    <message>
        <source>The lesson is open.</source>
        <translation>Die Stunde läuft.</translation>
    </message>
    <message>
        <source>No lesson is open.</source>
        <translation>Es läuft keine Stunde.</translation>
    </message>
    <message>
        <source>Nothing has been asked yet.</source>
        <translation>Es wurde noch nichts gefragt.</translation>
    </message>
    <message>
        <source>Learners join at %1 with this code.</source>
        <translation>Lernende kommen über %1 mit diesem Code herein.</translation>
    </message>
    <message>
        <source>Start a lesson, and learners can join.</source>
        <translation>Beginnen Sie eine Stunde, dann können Lernende dazukommen.</translation>
    </message>
    <message numerus="yes">
        <source>A lesson with %n learners is open. It ends for everybody.</source>
        <translation>
            <numerusform>Eine Stunde mit %n Person läuft. Sie endet für alle.</numerusform>
            <numerusform>Eine Stunde mit %n Lernenden läuft. Sie endet für alle.</numerusform>
        </translation>
    </message>
    <message>
        <source>Summary</source>
        <translation>Übersicht</translation>
    </message>
    <message>
        <source>Each poll and assessment</source>
        <translation>Alle Umfragen und Tests</translation>
    </message>
    <message>
        <source>Asked</source>
        <translation>Gefragt</translation>
    </message>
    <message>
        <source>Answered</source>
        <translation>Beantwortet</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Richtig</translation>
    </message>
    <message>
        <source>Most frequent answer</source>
        <translation>Häufigste Antwort</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>Learners who took part: %1</source>
        <translation>Lernende, die dabei waren: %1</translation>
    </message>
    <message>
        <source>Save the results</source>
        <translation>Ergebnisse sichern</translation>
    </message>
    <message>
        <source>results.csv</source>
        <translation>ergebnisse.csv</translation>
    </message>
    <message>
        <source>Results (*.csv *.json)</source>
        <translation>Ergebnisse (*.csv *.json)</translation>
    </message>
    <message>
        <source>The address of the classroom service</source>
        <translation>Die Adresse des Unterrichtsdienstes</translation>
    </message>
    <message>
        <source>Your name at the service</source>
        <translation>Ihr Name beim Dienst</translation>
    </message>
    <message>
        <source>Your password there</source>
        <translation>Ihr Passwort dort</translation>
    </message>
    <message>
        <source>&amp;Log in</source>
        <translation>&amp;Anmelden</translation>
    </message>
    <message>
        <source>Log in to the service</source>
        <translation>Beim Dienst anmelden</translation>
    </message>
    <message>
        <source>Start &amp;lesson</source>
        <translation>Stunde b&amp;eginnen</translation>
    </message>
    <message>
        <source>Open the lesson, so that learners can join</source>
        <translation>Die Stunde öffnen, damit Lernende dazukommen</translation>
    </message>
    <message>
        <source>&amp;End lesson</source>
        <translation>Stun&amp;de beenden</translation>
    </message>
    <message>
        <source>End the lesson for everybody</source>
        <translation>Die Stunde für alle beenden</translation>
    </message>
    <message>
        <source>End the lesson</source>
        <translation>Stunde beenden</translation>
    </message>
    <message>
        <source>Summar&amp;y…</source>
        <translation>&amp;Übersicht …</translation>
    </message>
    <message>
        <source>How polls and assessments came out</source>
        <translation>Wie Umfragen und Tests ausgegangen sind</translation>
    </message>
    <message>
        <source>Save &amp;results…</source>
        <translation>&amp;Sichern …</translation>
    </message>
    <message>
        <source>Write who answered what to a file</source>
        <translation>In eine Datei schreiben, wer was geantwortet hat</translation>
    </message>
    <message>
        <source>Log &amp;out</source>
        <translation>&amp;Abmelden</translation>
    </message>
    <message>
        <source>End what is open and log out</source>
        <translation>Beenden, was offen ist, und abmelden</translation>
    </message>
    <message>
        <source>Log out</source>
        <translation>Abmelden</translation>
    </message>
    <message>
        <source>It can join with the lesson’s code.</source>
        <translation>Sie kann mit dem Code der Stunde dazukommen.</translation>
    </message>
    <message>
        <source>&amp;Dismiss</source>
        <translation>Schl&amp;ießen</translation>
    </message>
    <message>
        <source>Close this message</source>
        <translation>Diese Meldung schließen</translation>
    </message>
    <message>
        <source>Try &amp;now</source>
        <translation>&amp;Jetzt versuchen</translation>
    </message>
    <message>
        <source>Try to open the channel at once</source>
        <translation>Sofort versuchen, die Verbindung zu öffnen</translation>
    </message>
    <message>
        <source>How far it is</source>
        <translation>Wie weit es ist</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>Abbre&amp;chen</translation>
    </message>
    <message>
        <source>Do not wait any longer</source>
        <translation>Nicht länger warten</translation>
    </message>
    <message>
        <source>What you do meanwhile is done when it is back.</source>
        <translation>Was Sie inzwischen tun, wird nachgeholt, sobald sie wieder da ist.</translation>
    </message>
</context>
<context>
    <name>Learners</name>
    <message>
        <source>Learners</source>
        <translation>Lernende</translation>
    </message>
    <message>
        <source>Learners (%1)</source>
        <translation>Lernende (%1)</translation>
    </message>
    <message>
        <source>Start the lesson first.</source>
        <translation>Beginnen Sie zuerst die Stunde.</translation>
    </message>
    <message>
        <source>Choose a learner first.</source>
        <translation>Wählen Sie zuerst jemanden aus.</translation>
    </message>
    <message>
        <source>Who is here; a tick shows who has answered</source>
        <translation>Wer da ist; ein Häkchen zeigt, wer geantwortet hat</translation>
    </message>
    <message>
        <source>Show only who has not answered</source>
        <translation>Nur zeigen, wer nicht geantwortet hat</translation>
    </message>
    <message>
        <source>&amp;Not answered yet</source>
        <translation>&amp;Noch keine Antwort</translation>
    </message>
    <message>
        <source>Loc&amp;k</source>
        <translation>Spe&amp;rren</translation>
    </message>
    <message>
        <source>Have everybody look up, until you unlock or ask something</source>
        <translation>Alle aufschauen lassen, bis Sie freigeben oder etwas fragen</translation>
    </message>
    <message>
        <source>Remo&amp;ve</source>
        <translation>Ent&amp;fernen</translation>
    </message>
    <message>
        <source>Send the chosen learner’s device away</source>
        <translation>Das Gerät der ausgewählten Person wegschicken</translation>
    </message>
</context>
<context>
    <name>Polls</name>
    <message>
        <source>One question, or several at each learner’s own pace</source>
        <translation>Eine Frage, oder mehrere im eigenen Tempo</translation>
    </message>
    <message>
        <source>What is asked</source>
        <translation>Was gefragt wird</translation>
    </message>
    <message>
        <source>Poll</source>
        <translation>Umfrage</translation>
    </message>
    <message>
        <source>Assessment</source>
        <translation>Test</translation>
    </message>
    <message>
        <source>Red; green; blue</source>
        <translation>Rot; grün; blau</translation>
    </message>
    <message>
        <source>&amp;Kind</source>
        <translation>Ar&amp;t</translation>
    </message>
    <message>
        <source>Question</source>
        <translation>Frage</translation>
    </message>
    <message>
        <source>Num&amp;ber of options</source>
        <translation>An&amp;zahl der Antworten</translation>
    </message>
    <message>
        <source>Opt&amp;ions</source>
        <translation>Antw&amp;orten</translation>
    </message>
    <message>
        <source>Ri&amp;ght answer</source>
        <translation>R&amp;ichtige Antwort</translation>
    </message>
    <message>
        <source>Add &amp;question</source>
        <translation>Frage hin&amp;zufügen</translation>
    </message>
    <message>
        <source>Take over the question of the page “Poll”</source>
        <translation>Die Frage der Seite „Umfrage“ übernehmen</translation>
    </message>
    <message>
        <source>Start assess&amp;ment</source>
        <translation>&amp;Test starten</translation>
    </message>
    <message>
        <source>Have the learners work through the questions</source>
        <translation>Die Lernenden die Fragen durcharbeiten lassen</translation>
    </message>
    <message>
        <source>Stop assessment</source>
        <translation>Test beenden</translation>
    </message>
    <message>
        <source>Take no more answers</source>
        <translation>Keine Antworten mehr annehmen</translation>
    </message>
    <message>
        <source>Res&amp;ume</source>
        <translation>&amp;Weiter</translation>
    </message>
    <message>
        <source>Pa&amp;use</source>
        <translation>Pa&amp;use</translation>
    </message>
    <message>
        <source>Fill in a question on the page “Poll”, then add it here.</source>
        <translation>Tragen Sie auf der Seite „Umfrage“ eine Frage ein und fügen Sie sie hier hinzu.</translation>
    </message>
    <message>
        <source>Questions: %1</source>
        <translation>Fragen: %1</translation>
    </message>
    <message>
        <source>Start the lesson first.</source>
        <translation>Beginnen Sie zuerst die Stunde.</translation>
    </message>
    <message>
        <source>A poll is running: stop it first.</source>
        <translation>Eine Umfrage läuft: Beenden Sie sie zuerst.</translation>
    </message>
    <message>
        <source>No poll is running.</source>
        <translation>Es läuft keine Umfrage.</translation>
    </message>
    <message>
        <source>Add a question first.</source>
        <translation>Fügen Sie zuerst eine Frage hinzu.</translation>
    </message>
    <message>
        <source>This kind of poll has no number of options to choose.</source>
        <translation>Bei dieser Art von Umfrage ist keine Anzahl zu wählen.</translation>
    </message>
    <message>
        <source>There are as many as texts.</source>
        <translation>Es sind so viele wie Texte.</translation>
    </message>
    <message>
        <source>This kind of poll has no options.</source>
        <translation>Diese Art von Umfrage hat keine Antworten zur Auswahl.</translation>
    </message>
    <message>
        <source>Nothing has been asked yet.</source>
        <translation>Es wurde noch nichts gefragt.</translation>
    </message>
    <message>
        <source>An assessment is running: stop it first.</source>
        <translation>Ein Test läuft: Beenden Sie ihn zuerst.</translation>
    </message>
    <message>
        <source>No assessment is running.</source>
        <translation>Es läuft kein Test.</translation>
    </message>
    <message>
        <source>Start a poll: the answers appear here as they come in.</source>
        <translation>Starten Sie eine Umfrage: Die Antworten erscheinen hier, sobald sie kommen.</translation>
    </message>
    <message>
        <source>What the learners are asked for</source>
        <translation>Was die Lernenden gefragt werden</translation>
    </message>
    <message>
        <source>Kind of poll</source>
        <translation>Art der Umfrage</translation>
    </message>
    <message>
        <source>What the learners read; empty: you ask in your own words</source>
        <translation>Was die Lernenden lesen; leer: Sie fragen selbst</translation>
    </message>
    <message>
        <source>How many options the learners choose from</source>
        <translation>Wie viele Antworten zur Auswahl stehen</translation>
    </message>
    <message>
        <source>What the options say, with a semicolon between them</source>
        <translation>Was die Antworten sagen, mit einem Semikolon dazwischen</translation>
    </message>
    <message>
        <source>The right answer, options by their letters or numbers</source>
        <translation>Die richtige Antwort, bei Auswahl mit Buchstaben oder Zahlen</translation>
    </message>
    <message>
        <source>Start &amp;poll</source>
        <translation>U&amp;mfrage starten</translation>
    </message>
    <message>
        <source>Ask the learners</source>
        <translation>Die Lernenden fragen</translation>
    </message>
    <message>
        <source>Let nobody answer for the time being, or go on</source>
        <translation>Vorerst niemanden antworten lassen, oder weitermachen</translation>
    </message>
    <message>
        <source>S&amp;top poll</source>
        <translation>Umfrage &amp;beenden</translation>
    </message>
    <message>
        <source>Stop in 10 s</source>
        <translation>In 10 s beenden</translation>
    </message>
    <message>
        <source>Give the learners ten seconds more</source>
        <translation>Den Lernenden noch zehn Sekunden geben</translation>
    </message>
    <message>
        <source>Sho&amp;w results</source>
        <translation>Ergebnisse zei&amp;gen</translation>
    </message>
    <message>
        <source>Show the learners how the poll came out</source>
        <translation>Den Lernenden zeigen, wie die Umfrage ausgegangen ist</translation>
    </message>
    <message>
        <source>How many gave which answer</source>
        <translation>Wie viele welche Antwort gegeben haben</translation>
    </message>
    <message>
        <source>Answers</source>
        <translation>Antworten</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>Take all questions out</source>
        <translation>Alle Fragen herausnehmen</translation>
    </message>
    <message>
        <source>What each learner answered</source>
        <translation>Was alle einzeln geantwortet haben</translation>
    </message>
    <message>
        <source>Answers by learner</source>
        <translation>Antworten nach Namen</translation>
    </message>
</context>
</TS>
