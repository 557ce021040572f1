<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>Words</name>
    <message>
        <source>there is no further card</source>
        <translation>es gibt keine weitere Karte</translation>
    </message>
    <message>
        <source>there is no earlier card</source>
        <translation>es gibt keine frühere Karte</translation>
    </message>
    <message>
        <source>there is no card</source>
        <translation>es gibt keine Karte</translation>
    </message>
    <message>
        <source>this is no picture</source>
        <translation>das ist kein Bild</translation>
    </message>
    <message>
        <source>neither a poll nor an assessment is under way</source>
        <translation>es läuft weder eine Umfrage noch ein Test</translation>
    </message>
    <message>
        <source>Card shown: %1</source>
        <translation>Gezeigte Karte: %1</translation>
    </message>
    <message>
        <source>  The remote control has joined</source>
        <translation>  Die Fernbedienung ist dazugekommen</translation>
    </message>
    <message>
        <source>  The remote control has left</source>
        <translation>  Die Fernbedienung ist gegangen</translation>
    </message>
    <message>
        <source>  + %1 has joined, %2 here</source>
        <translation>  + %1 ist dazugekommen, %2 da</translation>
    </message>
    <message>
        <source>  + %1 have joined, %2 here</source>
        <translation>  + %1 sind dazugekommen, %2 da</translation>
    </message>
    <message>
        <source>  - %1 has left, %2 here</source>
        <translation>  - %1 ist gegangen, %2 da</translation>
    </message>
    <message>
        <source>  - %1 have left, %2 here</source>
        <translation>  - %1 sind gegangen, %2 da</translation>
    </message>
    <message>
        <source>  Late: the answer of %1</source>
        <translation>  Zu spät: die Antwort von %1</translation>
    </message>
    <message>
        <source>  Late: the answers of %1</source>
        <translation>  Zu spät: die Antworten von %1</translation>
    </message>
    <message>
        <source>The connection is lost. Trying again.</source>
        <translation>Die Verbindung ist verloren. Neuer Versuch.</translation>
    </message>
    <message>
        <source>The connection is back.</source>
        <translation>Die Verbindung ist wieder da.</translation>
    </message>
    <message>
        <source>  Trying again in %1 s.</source>
        <translation>  Neuer Versuch in %1 s.</translation>
    </message>
    <message>
        <source>  %1 has answered all questions, %2 of %3 have</source>
        <translation>  %1 hat alle Fragen beantwortet, damit %2 von %3</translation>
    </message>
    <message>
        <source>  Remote control: %1</source>
        <translation>  Fernbedienung: %1</translation>
    </message>
    <message>
        <source>  Not done: %1.</source>
        <translation>  Nicht ausgeführt: %1.</translation>
    </message>
    <message>
        <source>  Card %1 of %2: %3</source>
        <translation>  Karte %1 von %2: %3</translation>
    </message>
    <message>
        <source>  An answer of %1 does not count</source>
        <translation>  Eine Antwort von %1 zählt nicht</translation>
    </message>
    <message>
        <source>  %1 asks for question %2, and gets none</source>
        <translation>  %1 bittet um Frage %2 und bekommt keine</translation>
    </message>
    <message>
        <source>  A message of the unknown type &quot;%1&quot; from %2: %3</source>
        <translation>  Eine Nachricht der unbekannten Art &quot;%1&quot; von %2: %3</translation>
    </message>
    <message>
        <source>  Not done: it came from %1.</source>
        <translation>  Nicht ausgeführt: Es kam von %1.</translation>
    </message>
    <message>
        <source>The connection is lost. Trying again in %1 s (r: now).</source>
        <translation>Die Verbindung ist verloren. Neuer Versuch in %1 s (r: sofort).</translation>
    </message>
    <message>
        <source>At work: %1</source>
        <translation>In Arbeit: %1</translation>
    </message>
    <message>
        <source>Waiting: %1</source>
        <translation>Warten: %1</translation>
    </message>
    <message>
        <source>  %1  Ctrl-C gives up</source>
        <translation>  %1  Strg-C bricht ab</translation>
    </message>
    <message>
        <source>&quot;calyx-presenter --help&quot; tells more.</source>
        <translation>&quot;calyx-presenter --help&quot; sagt mehr.</translation>
    </message>
    <message>
        <source>Type %1.</source>
        <translation>Geben Sie ein: %1.</translation>
    </message>
    <message>
        <source>&quot;help&quot; lists the commands, Tab completes them, &quot;quit&quot; ends.</source>
        <translation>&quot;help&quot; nennt die Befehle, Tab ergänzt sie, &quot;quit&quot; beendet.</translation>
    </message>
    <message>
        <source>&quot;help&quot; lists the commands, &quot;quit&quot; ends.</source>
        <translation>&quot;help&quot; nennt die Befehle, &quot;quit&quot; beendet.</translation>
    </message>
    <message>
        <source>usage: calyx-presenter --server URL [options]

Teaches a live classroom lesson: from a script, or by commands typed at a prompt.</source>
        <translation>Aufruf: calyx-presenter --server URL [Optionen]

Hält eine Live-Stunde: nach einem Skript oder mit Befehlen, die Sie eintippen.</translation>
    </message>
    <message>
        <source>In a lesson, one command stands on a line; &quot;#&quot; begins a comment line. A failed command ends a
script and anything piped in, not what is typed at a prompt. A session that is open at the end
is stopped, and the user is logged out. Ctrl-C (SIGINT) and SIGTERM end the lesson in the same
way; at the prompt, Ctrl-C first clears the line or gives up what is under way, and asks before it
ends a session. A third such signal ends the program at once.</source>
        <translation>In einer Stunde steht ein Befehl je Zeile; &quot;#&quot; beginnt eine Kommentarzeile. Ein Befehl, der
scheitert, beendet ein Skript und was über eine Pipe kommt, nicht was eingetippt wird. Eine
Sitzung, die am Ende offen ist, wird beendet, und Sie werden abgemeldet. Strg-C (SIGINT) und
SIGTERM beenden die Stunde ebenso; bei der Eingabe leert Strg-C zuerst die Zeile oder bricht
ab, was gerade läuft, und fragt, bevor es eine Sitzung beendet. Ein drittes solches Signal
beendet das Programm sofort.</translation>
    </message>
    <message>
        <source>Exit status:
  0    the whole lesson did what it says, or the remote control ended it
  1    something in it failed
  2    the command line or the script is wrong; nothing was done
  3    the service could not be reached
  130  ended by SIGINT; 143 by SIGTERM, 129 by SIGHUP</source>
        <translation>Rückgabewert:
  0    die Stunde hat alles getan, was in ihr steht, oder die Fernbedienung hat sie beendet
  1    etwas in ihr ist gescheitert
  2    die Befehlszeile oder das Skript ist falsch; nichts wurde getan
  3    der Dienst war nicht erreichbar
  130  beendet durch SIGINT; 143 durch SIGTERM, 129 durch SIGHUP</translation>
    </message>
    <message>
        <source>--server is missing. Name the classroom service&apos;s address.</source>
        <translation>--server fehlt. Nennen Sie die Adresse des Unterrichtsdienstes.</translation>
    </message>
    <message>
        <source>--server takes an address such as https://classroom.example, not &quot;%1&quot;.</source>
        <translation>--server nimmt eine Adresse wie https://classroom.example, nicht &quot;%1&quot;.</translation>
    </message>
    <message>
        <source>--transports takes %1, not &quot;%2&quot;.%3</source>
        <translation>--transports nimmt %1, nicht &quot;%2&quot;.%3</translation>
    </message>
    <message>
        <source>There is no option &quot;%1&quot;.%2</source>
        <translation>Es gibt keine Option &quot;%1&quot;.%2</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not an option. A lesson is named with --script.</source>
        <translation>&quot;%1&quot; ist keine Option. Eine Stunde wird mit --script genannt.</translation>
    </message>
    <message>
        <source>--transports takes at least one transport.</source>
        <translation>--transports nimmt mindestens einen Transport.</translation>
    </message>
    <message>
        <source>--open-limit takes a number of seconds, not &quot;%1&quot;.</source>
        <translation>--open-limit nimmt eine Zahl von Sekunden, nicht &quot;%1&quot;.</translation>
    </message>
    <message>
        <source>--quiet and --verbose exclude each other.</source>
        <translation>--quiet und --verbose schließen einander aus.</translation>
    </message>
    <message>
        <source>Examples:</source>
        <translation>Beispiele:</translation>
    </message>
    <message>
        <source>A lesson:</source>
        <translation>Eine Stunde:</translation>
    </message>
    <message>
        <source>Interrupted.</source>
        <translation>Unterbrochen.</translation>
    </message>
    <message>
        <source>Not done: %1</source>
        <translation>Nicht ausgeführt: %1</translation>
    </message>
    <message>
        <source>A session with %1 is open. Ctrl-C again, or &quot;quit&quot;, ends it.</source>
        <translation>Eine Sitzung ist offen, dabei: %1. Noch einmal Strg-C, oder &quot;quit&quot;, beendet sie.</translation>
    </message>
    <message>
        <source>Interrupted: the lesson is ended.</source>
        <translation>Unterbrochen: Die Stunde wird beendet.</translation>
    </message>
    <message>
        <source>%1 is no lesson: it is not text in UTF-8.</source>
        <translation>%1 ist keine Stunde: Es ist kein Text in UTF-8.</translation>
    </message>
    <message>
        <source>%1 is no lesson: %2 of its %3 lines begin with no command.</source>
        <translation>%1 ist keine Stunde: %2 der %3 Zeilen beginnen mit keinem Befehl.</translation>
    </message>
    <message>
        <source>and %1 more.</source>
        <translation>und noch %1.</translation>
    </message>
    <message>
        <source>The script %1 cannot be read: %2.</source>
        <translation>Das Skript %1 kann nicht gelesen werden: %2.</translation>
    </message>
    <message>
        <source>%1 is no lesson: it is larger than 16 MiB.</source>
        <translation>%1 ist keine Stunde: Es ist größer als 16 MiB.</translation>
    </message>
    <message>
        <source>Check --user and --password.</source>
        <translation>Prüfen Sie --user und --password.</translation>
    </message>
    <message>
        <source>Get a new code from the provider and try again.</source>
        <translation>Holen Sie sich beim Anbieter einen neuen Code und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>Logged in as %1.</source>
        <translation>Angemeldet als %1.</translation>
    </message>
    <message>
        <source>Session %1 was not ended: &quot;session resume&quot; takes it up.</source>
        <translation>Sitzung %1 wurde nicht beendet: &quot;session resume&quot; setzt sie fort.</translation>
    </message>
    <message>
        <source>the password of %1, which is not shown</source>
        <translation>das Passwort von %1, das nicht gezeigt wird</translation>
    </message>
    <message>
        <source>The service wants %1 to register first. It knows: %2. Use &quot;register NAME=VALUE ...&quot; to complete that.</source>
        <translation>Der Dienst will, dass %1 sich zuerst registriert. Er weiß: %2. Ergänzen Sie das mit &quot;register NAME=VALUE ...&quot;.</translation>
    </message>
    <message>
        <source>The check</source>
        <translation>Prüfung</translation>
    </message>
    <message>
        <source>The service at %1 answers.</source>
        <translation>Der Dienst unter %1 antwortet.</translation>
    </message>
    <message>
        <source>Nobody to log in. Use --user, or &quot;login USER PASSWORD&quot;.</source>
        <translation>Niemand anzumelden. Nehmen Sie --user oder &quot;login USER PASSWORD&quot;.</translation>
    </message>
    <message>
        <source>The login was given up.</source>
        <translation>Die Anmeldung wurde abgebrochen.</translation>
    </message>
    <message>
        <source>Login</source>
        <translation>Anmeldung</translation>
    </message>
    <message>
        <source>Login with the device token</source>
        <translation>Anmeldung mit dem Geräte-Token</translation>
    </message>
    <message>
        <source>Get a new one with &quot;token&quot;.</source>
        <translation>Holen Sie mit &quot;token&quot; ein neues.</translation>
    </message>
    <message>
        <source>The question who is logged in</source>
        <translation>Frage, wer angemeldet ist</translation>
    </message>
    <message>
        <source>Login with %1</source>
        <translation>Anmeldung mit %1</translation>
    </message>
    <message>
        <source>No registration is asked for. Use &quot;login oauth&quot; first.</source>
        <translation>Es ist keine Registrierung verlangt. Nehmen Sie zuerst &quot;login oauth&quot;.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not of the form NAME=VALUE.</source>
        <translation>&quot;%1&quot; hat nicht die Form NAME=VALUE.</translation>
    </message>
    <message>
        <source>The registration holds no text. Give at least one NAME=VALUE.</source>
        <translation>Die Registrierung enthält keinen Text. Geben Sie mindestens ein NAME=VALUE an.</translation>
    </message>
    <message>
        <source>Registration</source>
        <translation>Registrierung</translation>
    </message>
    <message>
        <source>Change a value, or begin again with &quot;login oauth&quot;.</source>
        <translation>Ändern Sie einen Wert, oder beginnen Sie neu mit &quot;login oauth&quot;.</translation>
    </message>
    <message>
        <source>The request for a device token</source>
        <translation>Bitte um ein Geräte-Token</translation>
    </message>
    <message>
        <source>Device token: %1</source>
        <translation>Geräte-Token: %1</translation>
    </message>
    <message>
        <source>The request was given up.</source>
        <translation>Die Anfrage wurde abgebrochen.</translation>
    </message>
    <message>
        <source>Nobody is logged in.</source>
        <translation>Niemand ist angemeldet.</translation>
    </message>
    <message>
        <source>%1 is logged in.</source>
        <translation>%1 ist angemeldet.</translation>
    </message>
    <message>
        <source>There is no earlier login to repeat. Use &quot;login&quot;.</source>
        <translation>Es gibt keine frühere Anmeldung zu wiederholen. Nehmen Sie &quot;login&quot;.</translation>
    </message>
    <message>
        <source>Use &quot;login&quot; instead.</source>
        <translation>Nehmen Sie stattdessen &quot;login&quot;.</translation>
    </message>
    <message>
        <source>The keep-alive</source>
        <translation>Lebenszeichen</translation>
    </message>
    <message>
        <source>The service was asked to keep the login alive.</source>
        <translation>Der Dienst wurde gebeten, die Anmeldung aufrechtzuerhalten.</translation>
    </message>
    <message>
        <source>Logged out.</source>
        <translation>Abgemeldet.</translation>
    </message>
    <message>
        <source>Ask whether the service answers.</source>
        <translation>Fragen, ob der Dienst antwortet.</translation>
    </message>
    <message>
        <source>USER and PASSWORD are offered when the service asks for HTTP authentication.</source>
        <translation>USER und PASSWORD werden angeboten, wenn der Dienst eine HTTP-Anmeldung verlangt.</translation>
    </message>
    <message>
        <source>Log in.</source>
        <translation>Anmelden.</translation>
    </message>
    <message>
        <source>Without USER and PASSWORD, those of the command line and of CALYX_PASSWORD are taken.</source>
        <translation>Ohne USER und PASSWORD gelten die der Befehlszeile und von CALYX_PASSWORD.</translation>
    </message>
    <message>
        <source>Log in with a device token instead of a password.</source>
        <translation>Mit einem Geräte-Token statt eines Passworts anmelden.</translation>
    </message>
    <message>
        <source>Log in with the code of an OAuth provider.</source>
        <translation>Mit dem Code eines OAuth-Anbieters anmelden.</translation>
    </message>
    <message>
        <source>The service may want a new user to register first: &quot;register&quot; does that.</source>
        <translation>Wer neu ist, muss sich vielleicht zuerst registrieren: Das tut &quot;register&quot;.</translation>
    </message>
    <message>
        <source>Complete the registration that an OAuth login has asked for.</source>
        <translation>Die Registrierung ergänzen, die eine OAuth-Anmeldung verlangt hat.</translation>
    </message>
    <message>
        <source>Adds the values to what the service knows, or changes it, and logs in.</source>
        <translation>Fügt die Werte zu dem hinzu, was der Dienst weiß, oder ändert es, und meldet an.</translation>
    </message>
    <message>
        <source>Get a token for later logins of this device.</source>
        <translation>Ein Token für spätere Anmeldungen dieses Geräts holen.</translation>
    </message>
    <message>
        <source>DEVICE is the device&apos;s id, NAME what people call it. This logs in, too.</source>
        <translation>DEVICE ist die Kennung des Geräts, NAME, wie man es nennt. Das meldet auch an.</translation>
    </message>
    <message>
        <source>Get a device token with a provider&apos;s code.</source>
        <translation>Ein Geräte-Token mit dem Code eines Anbieters holen.</translation>
    </message>
    <message>
        <source>Ask the service who is logged in.</source>
        <translation>Den Dienst fragen, wer angemeldet ist.</translation>
    </message>
    <message>
        <source>Log in again as the last time.</source>
        <translation>Wieder anmelden wie beim letzten Mal.</translation>
    </message>
    <message>
        <source>Keep the login alive.</source>
        <translation>Die Anmeldung aufrechterhalten.</translation>
    </message>
    <message>
        <source>Every minute this happens by itself.</source>
        <translation>Jede Minute geschieht das von selbst.</translation>
    </message>
    <message>
        <source>Stop the session, if one is open, and log out.</source>
        <translation>Die Sitzung beenden, wenn eine offen ist, und abmelden.</translation>
    </message>
    <message>
        <source>There is no poll type &quot;%1&quot;.%2 The poll types are: %3.</source>
        <translation>Es gibt keine Umfrageart &quot;%1&quot;.%2 Die Umfragearten sind: %3.</translation>
    </message>
    <message>
        <source>There is no labelling &quot;%1&quot;.%2 The labellings are: %3.</source>
        <translation>Es gibt keine Bezeichnung &quot;%1&quot;.%2 Die Bezeichnungen sind: %3.</translation>
    </message>
    <message>
        <source>Only a multiple choice has a number of correct options.</source>
        <translation>Nur eine Auswahl (multiple) hat eine Anzahl richtiger Antworten.</translation>
    </message>
    <message>
        <source>A question of type %1 has no choices.</source>
        <translation>Eine Frage der Art %1 hat keine Antworten zur Auswahl.</translation>
    </message>
    <message>
        <source>&quot;within&quot; takes a number of seconds, as the last words.</source>
        <translation>&quot;within&quot; nimmt eine Zahl von Sekunden, als letzte Wörter.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; takes yes or no, not &quot;%2&quot;.</source>
        <translation>&quot;%1&quot; nimmt yes oder no, nicht &quot;%2&quot;.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; takes a whole number, not &quot;%2&quot;.</source>
        <translation>&quot;%1&quot; nimmt eine ganze Zahl, nicht &quot;%2&quot;.</translation>
    </message>
    <message>
        <source>No learner here is called &quot;%1&quot;.%2 See &quot;learners&quot;.</source>
        <translation>Hier heißt niemand &quot;%1&quot;.%2 Siehe &quot;learners&quot;.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; can be %2. Say more of the name.</source>
        <translation>&quot;%1&quot; kann %2 sein. Nennen Sie mehr vom Namen.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not understood. See &quot;help assessment&quot;.</source>
        <translation>&quot;%1&quot; ist nicht zu verstehen. Siehe &quot;help assessment&quot;.</translation>
    </message>
    <message>
        <source>An assessment is under way. Use &quot;assessment stop&quot; before the next.</source>
        <translation>Ein Test läuft. Nehmen Sie &quot;assessment stop&quot; vor dem nächsten.</translation>
    </message>
    <message>
        <source>An assessment is under way: its settings stay. Use &quot;assessment start to=LEARNER&quot; alone.</source>
        <translation>Ein Test läuft: Seine Einstellungen bleiben. Nehmen Sie &quot;assessment start to=LEARNER&quot; allein.</translation>
    </message>
    <message>
        <source>%1 begins the assessment, too.</source>
        <translation>%1 beginnt den Test auch.</translation>
    </message>
    <message>
        <source>The text is shown to %1.</source>
        <translation>Der Text wird %1 gezeigt.</translation>
    </message>
    <message>
        <source>The assessment is paused; &quot;assessment resume&quot; goes on.</source>
        <translation>Der Test hat Pause; &quot;assessment resume&quot; geht weiter.</translation>
    </message>
    <message>
        <source>The assessment goes on.</source>
        <translation>Der Test geht weiter.</translation>
    </message>
    <message>
        <source>An assessment is under way: its questions stay. Use &quot;assessment stop&quot; first.</source>
        <translation>Ein Test läuft: Seine Fragen bleiben. Nehmen Sie zuerst &quot;assessment stop&quot;.</translation>
    </message>
    <message>
        <source>Question %1 is written: %2.</source>
        <translation>Frage %1 ist geschrieben: %2.</translation>
    </message>
    <message>
        <source>The assessment</source>
        <translation>Test</translation>
    </message>
    <message>
        <source>The assessment has started: %1.</source>
        <translation>Der Test hat begonnen: %1.</translation>
    </message>
    <message>
        <source>Write a question of the next assessment.</source>
        <translation>Eine Frage des nächsten Tests schreiben.</translation>
    </message>
    <message>
        <source>The types are those of &quot;poll&quot;. Choices are what the options say; their number is that of the options. ANSWER is the right one, for the marks: options by their ids, a number, or words. Where several are right, &quot;|&quot; divides them. Nothing goes out before &quot;assessment start&quot;.
Examples: assessment question number text=&quot;How many legs has a spider?&quot; answer=8
assessment question multiple choices=oxygen|water|light answer=BC</source>
        <translation>Die Arten sind die von &quot;poll&quot;. choices ist, was zur Auswahl steht; so viele Antworten gibt es. ANSWER ist die richtige, für die Bewertung: Antworten mit ihren Kennungen, eine Zahl oder Wörter. Sind mehrere richtig, trennt sie &quot;|&quot;. Vor &quot;assessment start&quot; geht nichts hinaus.
Beispiele: assessment question number text=&quot;Wie viele Beine hat eine Spinne?&quot; answer=8
assessment question multiple choices=Sauerstoff|Wasser|Licht answer=BC</translation>
    </message>
    <message>
        <source>Begin an assessment of the questions written.</source>
        <translation>Einen Test aus den geschriebenen Fragen beginnen.</translation>
    </message>
    <message>
        <source>For one learner or, without &quot;to&quot;, for the class and whoever joins it. Each learner gets the questions as he asks for them, at his own pace. While one is under way for single learners, &quot;to&quot; adds another. Without &quot;time&quot; it takes as long as it takes. The questions stay for another start, until the first of a new set is written. The settings, and what they are unless told otherwise: skip=no, questions may be skipped; navigate=no, one may go back to questions; resubmit=yes, answers may be changed; summary=no, the device shows a summary at the end.</source>
        <translation>Für eine Person oder, ohne &quot;to&quot;, für die Klasse und alle, die dazukommen. Alle bekommen die Fragen, wenn sie danach fragen, im eigenen Tempo. Läuft ein Test für Einzelne, nimmt &quot;to&quot; noch jemanden auf. Ohne &quot;time&quot; dauert er, solange er dauert. Die Fragen bleiben für einen weiteren Beginn, bis die erste eines neuen Satzes geschrieben wird. Die Einstellungen, und was ohne sie gilt: skip=no, Fragen dürfen übersprungen werden; navigate=no, man darf zu Fragen zurück; resubmit=yes, Antworten dürfen geändert werden; summary=no, das Gerät zeigt am Ende eine Übersicht.</translation>
    </message>
    <message>
        <source>Show the results so far, by learner and by question.</source>
        <translation>Die bisherigen Ergebnisse zeigen, nach Namen und nach Fragen.</translation>
    </message>
    <message>
        <source>A mark stands before each answer that has a right one.</source>
        <translation>Vor jeder Antwort, zu der es eine richtige gibt, steht ein Zeichen.</translation>
    </message>
    <message>
        <source>Show a text on the learners&apos; devices.</source>
        <translation>Einen Text auf den Geräten der Lernenden zeigen.</translation>
    </message>
    <message>
        <source>Also without an assessment.</source>
        <translation>Auch ohne Test.</translation>
    </message>
    <message>
        <source>Let the learners review their questions.</source>
        <translation>Die Lernenden ihre Fragen ansehen lassen.</translation>
    </message>
    <message>
        <source>Let the learners pause.</source>
        <translation>Den Lernenden eine Pause geben.</translation>
    </message>
    <message>
        <source>Let the learners go on.</source>
        <translation>Die Lernenden weitermachen lassen.</translation>
    </message>
    <message>
        <source>End the assessment and show its results.</source>
        <translation>Den Test beenden und seine Ergebnisse zeigen.</translation>
    </message>
    <message>
        <source>The card</source>
        <translation>Karte</translation>
    </message>
    <message>
        <source>That is no address of a picture, such as https://... or data:image/...</source>
        <translation>Das ist keine Adresse eines Bildes, wie https://... oder data:image/...</translation>
    </message>
    <message>
        <source>Card %1 is &quot;%2&quot;.</source>
        <translation>Karte %1 ist &quot;%2&quot;.</translation>
    </message>
    <message>
        <source>There is no card %1: the lesson has %2.</source>
        <translation>Es gibt keine Karte %1: Die Stunde hat %2.</translation>
    </message>
    <message>
        <source>Resource %1, for learners at %2</source>
        <translation>Ressource %1, für Lernende unter %2</translation>
    </message>
    <message>
        <source>PNG, %1 bytes</source>
        <translation>PNG, %1 Bytes</translation>
    </message>
    <message>
        <source>The lesson has no cards. &quot;deck add&quot; adds one.</source>
        <translation>Die Stunde hat keine Karten. &quot;deck add&quot; fügt eine hinzu.</translation>
    </message>
    <message>
        <source>Card</source>
        <translation>Karte</translation>
    </message>
    <message>
        <source>Picture</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>Show a PNG picture on the learners&apos; devices.</source>
        <translation>Ein PNG-Bild auf den Geräten der Lernenden zeigen.</translation>
    </message>
    <message>
        <source>A small picture travels in the message; one of more than 64 KiB is uploaded before.</source>
        <translation>Ein kleines Bild reist in der Nachricht mit; eines von mehr als 64 KiB wird zuvor hochgeladen.</translation>
    </message>
    <message>
        <source>Show a picture that devices load from an address.</source>
        <translation>Ein Bild zeigen, das die Geräte von einer Adresse laden.</translation>
    </message>
    <message>
        <source>Upload a picture and show it by its address.</source>
        <translation>Ein Bild hochladen und unter seiner Adresse zeigen.</translation>
    </message>
    <message>
        <source>Store a file at the service and print its address.</source>
        <translation>Eine Datei beim Dienst ablegen und ihre Adresse ausgeben.</translation>
    </message>
    <message>
        <source>List the cards of the lesson.</source>
        <translation>Die Karten der Stunde auflisten.</translation>
    </message>
    <message>
        <source>They are what the remote control goes through, and pushes to the learners.</source>
        <translation>Durch sie blättert die Fernbedienung, und sie schickt sie den Lernenden.</translation>
    </message>
    <message>
        <source>Add a PNG picture to the lesson&apos;s cards.</source>
        <translation>Den Karten der Stunde ein PNG-Bild hinzufügen.</translation>
    </message>
    <message>
        <source>Upload a picture and add it by its address.</source>
        <translation>Ein Bild hochladen und unter seiner Adresse hinzufügen.</translation>
    </message>
    <message>
        <source>Add a picture that devices load from an address.</source>
        <translation>Ein Bild hinzufügen, das die Geräte von einer Adresse laden.</translation>
    </message>
    <message>
        <source>Go to the next card.</source>
        <translation>Zur nächsten Karte gehen.</translation>
    </message>
    <message>
        <source>Go to the card before.</source>
        <translation>Zur vorigen Karte gehen.</translation>
    </message>
    <message>
        <source>Go to a card.</source>
        <translation>Zu einer Karte gehen.</translation>
    </message>
    <message>
        <source>Show the current card on the learners&apos; devices.</source>
        <translation>Die aktuelle Karte auf den Geräten der Lernenden zeigen.</translation>
    </message>
    <message>
        <source>The remote control has been told.</source>
        <translation>Die Fernbedienung weiß Bescheid.</translation>
    </message>
    <message>
        <source>The card&apos;s number goes from 1 to the number of cards, which is at most %1.</source>
        <translation>Die Nummer der Karte geht von 1 bis zur Anzahl der Karten, die höchstens %1 ist.</translation>
    </message>
    <message>
        <source>A message of type %1 is published to %2.</source>
        <translation>Eine Nachricht der Art %1 ist an %2 veröffentlicht.</translation>
    </message>
    <message>
        <source>A ping was sent on the live channel.</source>
        <translation>Ein Ping wurde auf dem Live-Kanal gesendet.</translation>
    </message>
    <message>
        <source>The lesson is called &quot;%1&quot;.</source>
        <translation>Die Stunde heißt &quot;%1&quot;.</translation>
    </message>
    <message>
        <source>The learners&apos; devices are locked; &quot;unlock&quot; frees them.</source>
        <translation>Die Geräte der Lernenden sind gesperrt; &quot;unlock&quot; gibt sie frei.</translation>
    </message>
    <message>
        <source>The learners&apos; devices are not locked.</source>
        <translation>Die Geräte der Lernenden sind nicht gesperrt.</translation>
    </message>
    <message>
        <source>The learners&apos; devices expect something large.</source>
        <translation>Die Geräte der Lernenden erwarten etwas Großes.</translation>
    </message>
    <message>
        <source>Tell the remote control of some lesson.</source>
        <translation>Der Fernbedienung von irgendeiner Stunde berichten.</translation>
    </message>
    <message>
        <source>By itself it is told of this one.</source>
        <translation>Von dieser erfährt sie von selbst.</translation>
    </message>
    <message>
        <source>Tell the remote control which card is shown.</source>
        <translation>Der Fernbedienung sagen, welche Karte gezeigt wird.</translation>
    </message>
    <message>
        <source>Tell the remote control that the presenter is here.</source>
        <translation>Der Fernbedienung sagen, dass die Lehrkraft da ist.</translation>
    </message>
    <message>
        <source>Publish a message of your own.</source>
        <translation>Eine eigene Nachricht veröffentlichen.</translation>
    </message>
    <message>
        <source>An ADDRESS that begins with &quot;.&quot; is below the session: .learner, .controller, .user.DEVICE. Example: publish .learner heavy &apos;&quot;&quot;&apos;</source>
        <translation>Eine ADDRESS, die mit &quot;.&quot; beginnt, liegt unter der Sitzung: .learner, .controller, .user.DEVICE. Beispiel: publish .learner heavy &apos;&quot;&quot;&apos;</translation>
    </message>
    <message>
        <source>Send a ping on the live channel.</source>
        <translation>Einen Ping auf dem Live-Kanal senden.</translation>
    </message>
    <message>
        <source>Name the lesson, for the remote control.</source>
        <translation>Der Stunde einen Namen geben, für die Fernbedienung.</translation>
    </message>
    <message>
        <source>Without a name of its own it is called as its script.</source>
        <translation>Ohne eigenen Namen heißt sie wie ihr Skript.</translation>
    </message>
    <message>
        <source>Cover the learners&apos; devices with a text.</source>
        <translation>Die Geräte der Lernenden mit einem Text verdecken.</translation>
    </message>
    <message>
        <source>Until &quot;unlock&quot;, or until the next poll starts.</source>
        <translation>Bis &quot;unlock&quot;, oder bis die nächste Umfrage beginnt.</translation>
    </message>
    <message>
        <source>Tell the learners&apos; devices that something large is coming.</source>
        <translation>Den Geräten der Lernenden sagen, dass etwas Großes kommt.</translation>
    </message>
    <message>
        <source>This needs a login. Use &quot;login&quot; first.</source>
        <translation>Das braucht eine Anmeldung. Nehmen Sie zuerst &quot;login&quot;.</translation>
    </message>
    <message>
        <source>There is no session. Use &quot;session start&quot; first.</source>
        <translation>Es gibt keine Sitzung. Nehmen Sie zuerst &quot;session start&quot;.</translation>
    </message>
    <message>
        <source>The live channel is closed. Use &quot;session reconnect&quot; to open it again.</source>
        <translation>Der Live-Kanal ist geschlossen. &quot;session reconnect&quot; öffnet ihn wieder.</translation>
    </message>
    <message>
        <source>No poll is running. Use &quot;poll TYPE&quot; to start one.</source>
        <translation>Es läuft keine Umfrage. &quot;poll TYPE&quot; beginnt eine.</translation>
    </message>
    <message>
        <source>No poll has been put. Use &quot;poll TYPE&quot;.</source>
        <translation>Es gab noch keine Umfrage. Nehmen Sie &quot;poll TYPE&quot;.</translation>
    </message>
    <message>
        <source>No assessment is under way. Use &quot;assessment start&quot;.</source>
        <translation>Es läuft kein Test. Nehmen Sie &quot;assessment start&quot;.</translation>
    </message>
    <message>
        <source>There has been no assessment. Use &quot;assessment start&quot;.</source>
        <translation>Es gab noch keinen Test. Nehmen Sie &quot;assessment start&quot;.</translation>
    </message>
    <message>
        <source>There are no questions. Use &quot;assessment question&quot; first.</source>
        <translation>Es gibt keine Fragen. Nehmen Sie zuerst &quot;assessment question&quot;.</translation>
    </message>
    <message>
        <source>The lesson has no cards. Use &quot;deck add&quot;.</source>
        <translation>Die Stunde hat keine Karten. Nehmen Sie &quot;deck add&quot;.</translation>
    </message>
    <message>
        <source>No session is live. Use &quot;session start&quot; first.</source>
        <translation>Es läuft keine Sitzung. Nehmen Sie zuerst &quot;session start&quot;.</translation>
    </message>
    <message>
        <source>the live channel</source>
        <translation>der Live-Kanal</translation>
    </message>
    <message>
        <source>The wait for the live channel was given up.</source>
        <translation>Das Warten auf den Live-Kanal wurde abgebrochen.</translation>
    </message>
    <message>
        <source>%1 was given up.</source>
        <translation>%1: abgebrochen.</translation>
    </message>
    <message>
        <source>The live channel to %1 did not open. Check that the network lets it through, or name other transports with --transports.</source>
        <translation>Der Live-Kanal zu %1 ging nicht auf. Prüfen Sie, ob das Netzwerk ihn durchlässt, oder nennen Sie mit --transports andere Transporte.</translation>
    </message>
    <message>
        <source>%1 failed: no classroom service answers at %2. Check --server, and that the service is running.</source>
        <translation>%1 gescheitert: Unter %2 antwortet kein Unterrichtsdienst. Prüfen Sie --server und ob der Dienst läuft.</translation>
    </message>
    <message>
        <source>%1 failed (%2). The certificate of %3 is signed by an authority that this machine does not know: install the authority&apos;s certificate.</source>
        <translation>%1 gescheitert (%2). Das Zertifikat von %3 stammt von einer Stelle, die dieser Rechner nicht kennt: Installieren Sie deren Zertifikat.</translation>
    </message>
    <message>
        <source>%1 failed. %2 %3</source>
        <translation>%1 gescheitert. %2 %3</translation>
    </message>
    <message>
        <source>%1 was refused (%2). %3</source>
        <translation>%1 abgelehnt (%2). %3</translation>
    </message>
    <message>
        <source>&quot;help TOPIC&quot; says what its commands do (&quot;help polls&quot;), &quot;help COMMAND&quot; how (&quot;help poll stop&quot;).</source>
        <translation>&quot;help TOPIC&quot; sagt, was die Befehle eines Themas tun (&quot;help polls&quot;), &quot;help COMMAND&quot;, wie (&quot;help poll stop&quot;).</translation>
    </message>
    <message>
        <source>There is no command &quot;%1&quot;.%2 There are: %3.</source>
        <translation>Es gibt keinen Befehl &quot;%1&quot;.%2 Es gibt: %3.</translation>
    </message>
    <message>
        <source>There is no command &quot;%1&quot;.%2 &quot;help&quot; lists all.</source>
        <translation>Es gibt keinen Befehl &quot;%1&quot;.%2 &quot;help&quot; nennt alle.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a whole number.</source>
        <translation>&quot;%1&quot; ist keine ganze Zahl.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a number of seconds.</source>
        <translation>&quot;%1&quot; ist keine Zahl von Sekunden.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is neither a whole number nor &quot;all&quot;.</source>
        <translation>&quot;%1&quot; ist weder eine ganze Zahl noch &quot;all&quot;.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not understood.%2</source>
        <translation>&quot;%1&quot; ist nicht zu verstehen.%2</translation>
    </message>
    <message>
        <source>There is no poll type &quot;%1&quot;.%2 The types are: %3.</source>
        <translation>Es gibt keine Umfrageart &quot;%1&quot;.%2 Die Arten sind: %3.</translation>
    </message>
    <message>
        <source>Usage: %1</source>
        <translation>Aufruf: %1</translation>
    </message>
    <message>
        <source>Logging in and out</source>
        <translation>An- und Abmelden</translation>
    </message>
    <message>
        <source>Sessions and who is in them</source>
        <translation>Sitzungen und wer dabei ist</translation>
    </message>
    <message>
        <source>Polls</source>
        <translation>Umfragen</translation>
    </message>
    <message>
        <source>Pictures and the cards of the lesson</source>
        <translation>Bilder und die Karten der Stunde</translation>
    </message>
    <message>
        <source>Learners&apos; devices and the remote control</source>
        <translation>Die Geräte der Lernenden und die Fernbedienung</translation>
    </message>
    <message>
        <source>Assessments</source>
        <translation>Tests</translation>
    </message>
    <message>
        <source>The steps of a lesson</source>
        <translation>Die Schritte einer Stunde</translation>
    </message>
    <message>
        <source>This program</source>
        <translation>Dieses Programm</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>Total: %1, %2, %3, %4, %5.</source>
        <translation>Insgesamt: %1, %2, %3, %4, %5.</translation>
    </message>
    <message>
        <source>Poll</source>
        <translation>Umfrage</translation>
    </message>
    <message>
        <source>Answers</source>
        <translation>Antworten</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Richtig</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Most frequent</source>
        <translation>Am häufigsten</translation>
    </message>
    <message>
        <source>The session is stopped.</source>
        <translation>Die Sitzung ist beendet.</translation>
    </message>
    <message>
        <source>Logging out</source>
        <translation>Abmeldung</translation>
    </message>
    <message>
        <source>Try it again.</source>
        <translation>Versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>%1 cannot be read: %2.</source>
        <translation>%1 kann nicht gelesen werden: %2.</translation>
    </message>
    <message>
        <source>%1 is larger than 16 MiB.</source>
        <translation>%1 ist größer als 16 MiB.</translation>
    </message>
    <message>
        <source>%1 is not a PNG file. Others can be uploaded: see &quot;help card&quot;.</source>
        <translation>%1 ist keine PNG-Datei. Andere lassen sich hochladen: siehe &quot;help card&quot;.</translation>
    </message>
    <message>
        <source>The upload of %1</source>
        <translation>Hochladen von %1</translation>
    </message>
    <message>
        <source>Check that you are logged in and that the file is not too large for the service.</source>
        <translation>Prüfen Sie, ob Sie angemeldet sind und ob die Datei für den Dienst nicht zu groß ist.</translation>
    </message>
    <message>
        <source>%1 was uploaded, but the service gave no id for it.</source>
        <translation>%1 wurde hochgeladen, aber der Dienst gab keine Kennung dafür.</translation>
    </message>
    <message>
        <source>%1 of %2 learners are here</source>
        <translation>%1 von %2 Lernenden sind da</translation>
    </message>
    <message>
        <source>%1 of %2 answers have come</source>
        <translation>%1 von %2 Antworten sind da</translation>
    </message>
    <message>
        <source>%1; none yet from %2</source>
        <translation>%1; noch keine von %2</translation>
    </message>
    <message>
        <source>%1 of %2 learners have finished</source>
        <translation>%1 von %2 Lernenden sind fertig</translation>
    </message>
    <message>
        <source>%1; not yet %2</source>
        <translation>%1; noch nicht %2</translation>
    </message>
    <message>
        <source>The wait was given up: %1.</source>
        <translation>Das Warten wurde abgebrochen: %1.</translation>
    </message>
    <message>
        <source>The session was lost while waiting: %1.</source>
        <translation>Die Sitzung ging beim Warten verloren: %1.</translation>
    </message>
    <message>
        <source>After %1, %2.</source>
        <translation>Nach %1: %2.</translation>
    </message>
    <message>
        <source>Expected otherwise: %1.</source>
        <translation>Anders als erwartet: %1.</translation>
    </message>
    <message>
        <source>As expected: %1.</source>
        <translation>Wie erwartet: %1.</translation>
    </message>
    <message>
        <source>A pause of %1</source>
        <translation>Eine Pause von %1</translation>
    </message>
    <message>
        <source>Paused for %1.</source>
        <translation>Pause von %1.</translation>
    </message>
    <message>
        <source>The pause was cut short.</source>
        <translation>Die Pause wurde abgekürzt.</translation>
    </message>
    <message>
        <source>Wait until N learners are here.</source>
        <translation>Warten, bis N Lernende da sind.</translation>
    </message>
    <message>
        <source>For a minute, unless told otherwise here or by &quot;set wait-limit&quot;.</source>
        <translation>Eine Minute lang, wenn nicht hier oder mit &quot;set wait-limit&quot; anders gesagt.</translation>
    </message>
    <message>
        <source>Wait until N answers have come, or those of all learners.</source>
        <translation>Warten, bis N Antworten da sind oder die aller Lernenden.</translation>
    </message>
    <message>
        <source>Wait until N learners, or all, have finished the assessment.</source>
        <translation>Warten, bis N Lernende oder alle mit dem Test fertig sind.</translation>
    </message>
    <message>
        <source>Fail unless N learners are here.</source>
        <translation>Scheitern, wenn nicht N Lernende da sind.</translation>
    </message>
    <message>
        <source>Fail unless the last poll has N answers, or those of all learners.</source>
        <translation>Scheitern, wenn die letzte Umfrage nicht N Antworten hat oder die aller Lernenden.</translation>
    </message>
    <message>
        <source>Fail unless N learners, or all, have finished the assessment.</source>
        <translation>Scheitern, wenn nicht N Lernende oder alle mit dem Test fertig sind.</translation>
    </message>
    <message>
        <source>Print a line.</source>
        <translation>Eine Zeile ausgeben.</translation>
    </message>
    <message>
        <source>Print a heading.</source>
        <translation>Eine Überschrift ausgeben.</translation>
    </message>
    <message>
        <source>Do nothing for a while.</source>
        <translation>Eine Weile nichts tun.</translation>
    </message>
    <message>
        <source>There is no transport &quot;%1&quot;.%2 There are %3.</source>
        <translation>Es gibt keinen Transport &quot;%1&quot;.%2 Es gibt %3.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is %2 now.</source>
        <translation>&quot;%1&quot; ist jetzt %2.</translation>
    </message>
    <message>
        <source>There is neither a command nor a topic &quot;%1&quot;. &quot;help&quot; lists them.</source>
        <translation>Es gibt weder einen Befehl noch ein Thema &quot;%1&quot;. &quot;help&quot; nennt sie.</translation>
    </message>
    <message>
        <source>Change a setting.</source>
        <translation>Eine Einstellung ändern.</translation>
    </message>
    <message>
        <source>transports NAME ...: those to use for the next session instead of the tenant&apos;s.
open-limit SECONDS: how long a transport may take to open; 0 is no limit.
wait-limit SECONDS: how long a &quot;wait&quot; lasts when it does not say.</source>
        <translation>transports NAME ...: die für die nächste Sitzung, statt der vorgegebenen.
open-limit SECONDS: wie lange ein Transport zum Öffnen brauchen darf; 0 ist ohne Grenze.
wait-limit SECONDS: wie lange ein &quot;wait&quot; dauert, wenn es nichts sagt.</translation>
    </message>
    <message>
        <source>List the commands, or explain a topic or one of them.</source>
        <translation>Die Befehle auflisten, oder ein Thema oder einen davon erklären.</translation>
    </message>
    <message>
        <source>End the lesson: stop the session, log out, leave.</source>
        <translation>Die Stunde beenden: Sitzung beenden, abmelden, gehen.</translation>
    </message>
    <message>
        <source>Ctrl-D does so, too.</source>
        <translation>Strg-D tut das auch.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not understood here. See &quot;help poll&quot;.</source>
        <translation>&quot;%1&quot; ist hier nicht zu verstehen. Siehe &quot;help poll&quot;.</translation>
    </message>
    <message>
        <source>The poll</source>
        <translation>Umfrage</translation>
    </message>
    <message>
        <source>Poll %1 has started: %2.</source>
        <translation>Umfrage %1 hat begonnen: %2.</translation>
    </message>
    <message>
        <source>the end of the poll</source>
        <translation>das Ende der Umfrage</translation>
    </message>
    <message>
        <source>The wait was given up: the poll stops all the same.</source>
        <translation>Das Warten wurde abgebrochen: Die Umfrage endet trotzdem.</translation>
    </message>
    <message>
        <source>The poll is paused; &quot;poll resume&quot; goes on.</source>
        <translation>Die Umfrage hat Pause; &quot;poll resume&quot; geht weiter.</translation>
    </message>
    <message>
        <source>The poll goes on.</source>
        <translation>Die Umfrage geht weiter.</translation>
    </message>
    <message>
        <source>  No answer yet from %1.</source>
        <translation>  Noch keine Antwort von %1.</translation>
    </message>
    <message>
        <source>The learners are shown how poll %1 came out.</source>
        <translation>Die Lernenden sehen, wie Umfrage %1 ausgegangen ist.</translation>
    </message>
    <message>
        <source>Saving</source>
        <translation>Sichern</translation>
    </message>
    <message>
        <source>The results are saved in %1.</source>
        <translation>Die Ergebnisse sind in %1 gesichert.</translation>
    </message>
    <message>
        <source>Put a poll to the learners.</source>
        <translation>Den Lernenden eine Umfrage stellen.</translation>
    </message>
    <message>
        <source>TYPE: true-false, yes-no-other, multiple, scale, sort, text, word-seed, number, creative, math-formula. ORDINAL labels the options: true-false, yes-no, yes-no-maybe, yes-no-unsure, yes-no-other, alpha-upper, alpha-lower, number, agreement, confidence, generic. OPTIONS is their number; of a number poll, its decimals. EXTRA is the number of correct options of a multiple choice. TEXT is the question, and the choices are what its options say: devices show them. ANSWER is what is right, for the marks; &quot;help assessment question&quot; tells more. What is left out is what the type usually has. A picture is a PNG file that travels in the message, a file that is uploaded, or an address from which devices can load it. A poll that runs is stopped first.
Examples: poll true-false    poll multiple alpha-upper 5 2    poll number 2
poll scale agreement 5 picture images/leaf.png</source>
        <translation>TYPE: true-false, yes-no-other, multiple, scale, sort, text, word-seed, number, creative, math-formula. ORDINAL bezeichnet die Antworten: true-false, yes-no, yes-no-maybe, yes-no-unsure, yes-no-other, alpha-upper, alpha-lower, number, agreement, confidence, generic. OPTIONS ist ihre Anzahl; bei einer Zahl (number) die der Nachkommastellen. EXTRA ist die Anzahl richtiger Antworten einer Auswahl (multiple). TEXT ist die Frage, und choices ist, was zur Auswahl steht: Die Geräte zeigen beides. ANSWER ist, was richtig ist, für die Bewertung; &quot;help assessment question&quot; sagt mehr. Was fehlt, ist wie bei der Art üblich. Ein Bild ist eine PNG-Datei, die in der Nachricht mitreist, eine Datei, die hochgeladen wird, oder eine Adresse, von der die Geräte es laden. Eine laufende Umfrage wird zuerst beendet.
Beispiele: poll true-false    poll multiple alpha-upper 5 2    poll number 2
poll scale agreement 5 picture images/leaf.png</translation>
    </message>
    <message>
        <source>Stop the poll and show its final tally.</source>
        <translation>Die Umfrage beenden und ihr Endergebnis zeigen.</translation>
    </message>
    <message>
        <source>With SECONDS, when they are over: the learners&apos; devices count them down.</source>
        <translation>Mit SECONDS, wenn sie um sind: Die Geräte der Lernenden zählen sie herunter.</translation>
    </message>
    <message>
        <source>Show the answers so far and whose are missing.</source>
        <translation>Die bisherigen Antworten zeigen, und wessen fehlen.</translation>
    </message>
    <message>
        <source>Show the learners how the poll came out.</source>
        <translation>Den Lernenden zeigen, wie die Umfrage ausgegangen ist.</translation>
    </message>
    <message>
        <source>Each gets the counts on his device and, where an answer is right, whether his is.</source>
        <translation>Alle bekommen die Zahlen auf ihr Gerät und, wo es eine richtige Antwort gibt, ob es ihre ist.</translation>
    </message>
    <message>
        <source>Show a table of all polls so far, and what assessments came to.</source>
        <translation>Eine Tabelle aller bisherigen Umfragen zeigen, und was Tests ergaben.</translation>
    </message>
    <message>
        <source>When the session ends, it is shown once more if something has changed.</source>
        <translation>Endet die Sitzung, wird sie noch einmal gezeigt, wenn sich etwas geändert hat.</translation>
    </message>
    <message>
        <source>Save who was here, every question, every answer and the marks.</source>
        <translation>Sichern, wer da war, jede Frage, jede Antwort und die Bewertung.</translation>
    </message>
    <message>
        <source>As JSON, or as a table where FILE ends in &quot;.csv&quot;.</source>
        <translation>Als JSON, oder als Tabelle, wenn FILE auf &quot;.csv&quot; endet.</translation>
    </message>
    <message>
        <source>Use &quot;login&quot; again.</source>
        <translation>Nehmen Sie noch einmal &quot;login&quot;.</translation>
    </message>
    <message>
        <source>Session %1 is open. Use &quot;session stop&quot; first.</source>
        <translation>Sitzung %1 ist offen. Nehmen Sie zuerst &quot;session stop&quot;.</translation>
    </message>
    <message>
        <source>Session %1 is live. Join at %2 with %1.</source>
        <translation>Sitzung %1 läuft. Beitritt über %2 mit %1.</translation>
    </message>
    <message>
        <source>Starting a session</source>
        <translation>Beginn einer Sitzung</translation>
    </message>
    <message>
        <source>Creating a session</source>
        <translation>Anlegen einer Sitzung</translation>
    </message>
    <message>
        <source>Session %1 is created. &quot;session live&quot; starts it.</source>
        <translation>Sitzung %1 ist angelegt. &quot;session live&quot; beginnt sie.</translation>
    </message>
    <message>
        <source>There is no session to take up. Use &quot;session start&quot;.</source>
        <translation>Es gibt keine Sitzung fortzusetzen. Nehmen Sie &quot;session start&quot;.</translation>
    </message>
    <message>
        <source>Taking the session up</source>
        <translation>Fortsetzen der Sitzung</translation>
    </message>
    <message>
        <source>What was collected is still here: &quot;summary&quot; shows it, &quot;save FILE&quot; keeps it.</source>
        <translation>Was gesammelt wurde, ist noch hier: &quot;summary&quot; zeigt es, &quot;save FILE&quot; bewahrt es.</translation>
    </message>
    <message>
        <source>The live channel is open again.</source>
        <translation>Der Live-Kanal ist wieder offen.</translation>
    </message>
    <message>
        <source>The connection</source>
        <translation>Verbindung</translation>
    </message>
    <message>
        <source>Closing the live channel</source>
        <translation>Schließen des Live-Kanals</translation>
    </message>
    <message>
        <source>The live channel is closed: the learners&apos; devices say that the session has ended. &quot;session reconnect&quot; opens it again; they join again.</source>
        <translation>Der Live-Kanal ist geschlossen: Die Geräte der Lernenden sagen, dass die Sitzung zu Ende ist. &quot;session reconnect&quot; öffnet ihn wieder; sie kommen neu dazu.</translation>
    </message>
    <message>
        <source>The question</source>
        <translation>Frage</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine Angabe</translation>
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
        <source>Session code</source>
        <translation>Sitzungscode</translation>
    </message>
    <message>
        <source>Learners join at</source>
        <translation>Beitritt über</translation>
    </message>
    <message>
        <source>Session token</source>
        <translation>Sitzungs-Token</translation>
    </message>
    <message>
        <source>Collaboration server</source>
        <translation>Live-Server</translation>
    </message>
    <message>
        <source>Transports</source>
        <translation>Transporte</translation>
    </message>
    <message>
        <source>Live channel</source>
        <translation>Live-Kanal</translation>
    </message>
    <message>
        <source>open</source>
        <translation>offen</translation>
    </message>
    <message>
        <source>closed</source>
        <translation>geschlossen</translation>
    </message>
    <message>
        <source>Learners</source>
        <translation>Lernende</translation>
    </message>
    <message>
        <source>There is no session to stop.</source>
        <translation>Es gibt keine Sitzung zu beenden.</translation>
    </message>
    <message>
        <source>Stopping the session</source>
        <translation>Beenden der Sitzung</translation>
    </message>
    <message>
        <source>Session %1 is stopped.</source>
        <translation>Sitzung %1 ist beendet.</translation>
    </message>
    <message>
        <source>No learner is here.</source>
        <translation>Niemand ist da.</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Device</source>
        <translation>Gerät</translation>
    </message>
    <message>
        <source>Device id</source>
        <translation>Gerätekennung</translation>
    </message>
    <message>
        <source>%1 is sent away.</source>
        <translation>%1 wird weggeschickt.</translation>
    </message>
    <message>
        <source>Create a session and go live.</source>
        <translation>Eine Sitzung anlegen und beginnen.</translation>
    </message>
    <message>
        <source>Waits until the live channel is open: for as long as the transports may take together, or for SECONDS. Does &quot;session create&quot; and &quot;session live&quot; in one.</source>
        <translation>Wartet, bis der Live-Kanal offen ist: so lange, wie die Transporte zusammen brauchen dürfen, oder SECONDS. Tut &quot;session create&quot; und &quot;session live&quot; in einem.</translation>
    </message>
    <message>
        <source>Take up a session whose presenter was killed.</source>
        <translation>Eine Sitzung fortsetzen, deren Programm abgebrochen wurde.</translation>
    </message>
    <message>
        <source>With the learners who are still in it, and with all that was asked and answered. FILE is the journal, where it is not the one that this program writes by itself.</source>
        <translation>Mit den Lernenden, die noch darin sind, und mit allem, was gefragt und geantwortet wurde. FILE ist das Protokoll, wenn es nicht das ist, das dieses Programm von selbst schreibt.</translation>
    </message>
    <message>
        <source>Create a session, without starting it.</source>
        <translation>Eine Sitzung anlegen, ohne sie zu beginnen.</translation>
    </message>
    <message>
        <source>Start the created session and open its live channel.</source>
        <translation>Die angelegte Sitzung beginnen und ihren Live-Kanal öffnen.</translation>
    </message>
    <message>
        <source>Open the live channel again.</source>
        <translation>Den Live-Kanal wieder öffnen.</translation>
    </message>
    <message>
        <source>With the transports as before, or with those named.</source>
        <translation>Mit den Transporten wie zuvor oder mit den genannten.</translation>
    </message>
    <message>
        <source>Close the live channel, for the learners the end of the session.</source>
        <translation>Den Live-Kanal schließen, für die Lernenden das Ende der Sitzung.</translation>
    </message>
    <message>
        <source>Show the session&apos;s code, address, transports and state.</source>
        <translation>Code, Adresse, Transporte und Zustand der Sitzung zeigen.</translation>
    </message>
    <message>
        <source>Stop the session.</source>
        <translation>Die Sitzung beenden.</translation>
    </message>
    <message>
        <source>A poll that runs is stopped first.</source>
        <translation>Eine laufende Umfrage wird zuerst beendet.</translation>
    </message>
    <message>
        <source>List the learners who are here.</source>
        <translation>Die Lernenden auflisten, die da sind.</translation>
    </message>
    <message>
        <source>Send a learner&apos;s device away.</source>
        <translation>Das Gerät einer Person wegschicken.</translation>
    </message>
    <message>
        <source>LEARNER is a name, the beginning of one, or a device id.</source>
        <translation>LEARNER ist ein Name, der Anfang eines Namens oder eine Gerätekennung.</translation>
    </message>
    <message>
        <source>Try at once to find the way back to a lost session.</source>
        <translation>Sofort versuchen, zu einer verlorenen Sitzung zurückzufinden.</translation>
    </message>
    <message>
        <source>By itself that is tried in between, for as long as the session may live. What is done meanwhile reaches the learners when the connection is back.</source>
        <translation>Von selbst wird das immer wieder versucht, solange die Sitzung leben kann. Was inzwischen getan wird, erreicht die Lernenden, wenn die Verbindung wieder da ist.</translation>
    </message>
    <message>
        <source>The same as &quot;retry&quot;.</source>
        <translation>Dasselbe wie &quot;retry&quot;.</translation>
    </message>
    <message>
        <source>Learner</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Score</source>
        <translation>Punkte</translation>
    </message>
    <message>
        <source>Question</source>
        <translation>Frage</translation>
    </message>
    <message>
        <source>%1, %2 of %3 right.</source>
        <translation>%1, %2 von %3 richtig.</translation>
    </message>
    <message>
        <source>Poll %1: %2</source>
        <translation>Umfrage %1: %2</translation>
    </message>
    <message>
        <source>Assessment</source>
        <translation>Test</translation>
    </message>
    <message>
        <source>%1 of %2 finished</source>
        <translation>%1 von %2 fertig</translation>
    </message>
    <message>
        <source>Lesson</source>
        <translation>Stunde</translation>
    </message>
    <message numerus="yes">
        <source>%n correct</source>
        <translation>
            <numerusform>%n richtige</numerusform>
            <numerusform>%n richtige</numerusform>
        </translation>
    </message>
    <message>
        <source>with a picture</source>
        <translation>mit Bild</translation>
    </message>
    <message>
        <source>paused</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>stops in %1 s</source>
        <translation>endet in %1 s</translation>
    </message>
    <message>
        <source>1 more option</source>
        <translation>noch 1 Antwort zur Auswahl</translation>
    </message>
    <message numerus="yes">
        <source>%n more options</source>
        <translation>
            <numerusform>noch %n Antwort zur Auswahl</numerusform>
            <numerusform>noch %n Antworten zur Auswahl</numerusform>
        </translation>
    </message>
    <message>
        <source>1 different answer more</source>
        <translation>noch 1 andere Antwort</translation>
    </message>
    <message numerus="yes">
        <source>%n different answers more</source>
        <translation>
            <numerusform>noch %n andere Antwort</numerusform>
            <numerusform>noch %n andere Antworten</numerusform>
        </translation>
    </message>
    <message>
        <source>and %1</source>
        <translation>und %1</translation>
    </message>
    <message>
        <source>No answers yet.</source>
        <translation>Noch keine Antworten.</translation>
    </message>
    <message>
        <source>%1 of %2 answered</source>
        <translation>%1 von %2 geantwortet</translation>
    </message>
    <message>
        <source>The quotation that begins with %1 has no end.</source>
        <translation>Das Zitat, das mit %1 beginnt, hat kein Ende.</translation>
    </message>
    <message>
        <source> Did you mean %1?</source>
        <translation> Meinten Sie %1?</translation>
    </message>
    <message>
        <source> or </source>
        <translation> oder </translation>
    </message>
    <message>
        <source>1 answer</source>
        <translation>1 Antwort</translation>
    </message>
    <message numerus="yes">
        <source>%n answers</source>
        <translation>
            <numerusform>%n Antwort</numerusform>
            <numerusform>%n Antworten</numerusform>
        </translation>
    </message>
    <message>
        <source>1 card</source>
        <translation>1 Karte</translation>
    </message>
    <message numerus="yes">
        <source>%n cards</source>
        <translation>
            <numerusform>%n Karte</numerusform>
            <numerusform>%n Karten</numerusform>
        </translation>
    </message>
    <message>
        <source>1 decimal</source>
        <translation>1 Nachkommastelle</translation>
    </message>
    <message numerus="yes">
        <source>%n decimals</source>
        <translation>
            <numerusform>%n Nachkommastelle</numerusform>
            <numerusform>%n Nachkommastellen</numerusform>
        </translation>
    </message>
    <message>
        <source>1 late answer</source>
        <translation>1 späte Antwort</translation>
    </message>
    <message numerus="yes">
        <source>%n late answers</source>
        <translation>
            <numerusform>%n späte Antwort</numerusform>
            <numerusform>%n späte Antworten</numerusform>
        </translation>
    </message>
    <message>
        <source>1 learner</source>
        <translation>1 Lernende/r</translation>
    </message>
    <message numerus="yes">
        <source>%n learners</source>
        <translation>
            <numerusform>%n Lernende/r</numerusform>
            <numerusform>%n Lernende</numerusform>
        </translation>
    </message>
    <message>
        <source>1 option</source>
        <translation>1 Antwort zur Auswahl</translation>
    </message>
    <message numerus="yes">
        <source>%n options</source>
        <translation>
            <numerusform>%n Antwort zur Auswahl</numerusform>
            <numerusform>%n Antworten zur Auswahl</numerusform>
        </translation>
    </message>
    <message>
        <source>1 poll</source>
        <translation>1 Umfrage</translation>
    </message>
    <message numerus="yes">
        <source>%n polls</source>
        <translation>
            <numerusform>%n Umfrage</numerusform>
            <numerusform>%n Umfragen</numerusform>
        </translation>
    </message>
    <message>
        <source>1 question</source>
        <translation>1 Frage</translation>
    </message>
    <message numerus="yes">
        <source>%n questions</source>
        <translation>
            <numerusform>%n Frage</numerusform>
            <numerusform>%n Fragen</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 and %2 more</source>
        <translation>%1 und %2 weitere</translation>
    </message>
    <message>
        <source>1 second</source>
        <translation>1 Sekunde</translation>
    </message>
    <message>
        <source>%1 seconds</source>
        <translation>%1 Sekunden</translation>
    </message>
    <message>
        <source>The text is shown to the class.</source>
        <translation>Der Text wird der Klasse gezeigt.</translation>
    </message>
    <message>
        <source>  --server URL        the classroom service&apos;s address
  --user USER         who &quot;login&quot; logs in when it names nobody
  --password TEXT     the password for that; better given in the environment variable
                      CALYX_PASSWORD, as a command line can be seen by others
  --script FILE       run the lesson in FILE; without it, commands come from the keyboard, or
                      line by line from standard input where that is no terminal
  --check FILE        say what is wrong with the lesson in FILE, and do nothing else
  --transports LIST   the transports to use instead of the tenant&apos;s, in this order, divided by
                      commas: websocket, xhr-streaming, xhr-polling
  --open-limit SECONDS
                      how long a transport may take to open before the next is tried (10; 0: no
                      limit)
  --journal FILE      write the lesson down in FILE while it goes on, for &quot;session resume&quot; after a crash;
                      names and answers stand in it. A typed lesson does so by itself, in a
                      file of its own that goes when the lesson ends; &quot;none&quot;: no file
  --quiet             print errors and results only: no progress, no narration
  --verbose           print the library&apos;s diagnostics on standard error; they hold tokens
  --version           print the version
  --help              print this text; &quot;help&quot; at the prompt explains the commands</source>
        <translation>  --server URL        die Adresse des Unterrichtsdienstes
  --user USER         wen &quot;login&quot; anmeldet, wenn es niemanden nennt
  --password TEXT     das Passwort dafür; besser in der Umgebungsvariablen CALYX_PASSWORD,
                      denn eine Befehlszeile können andere sehen
  --script FILE       die Stunde in FILE halten; ohne das kommen Befehle von der Tastatur oder,
                      wo kein Terminal ist, Zeile für Zeile von der Standardeingabe
  --check FILE        sagen, was an der Stunde in FILE falsch ist, und sonst nichts tun
  --transports LIST   diese Transporte statt der vorgegebenen benutzen, in dieser Reihenfolge,
                      durch Kommas getrennt: websocket, xhr-streaming, xhr-polling
  --open-limit SECONDS
                      wie lange ein Transport zum Öffnen brauchen darf, bevor der nächste
                      versucht wird (10; 0: ohne Grenze)
  --journal FILE      die Stunde laufend in FILE mitschreiben, für &quot;session resume&quot; nach einem
                      Absturz; Namen und Antworten stehen darin. Eine eingetippte Stunde tut
                      das von selbst, in einer eigenen Datei, die mit der Stunde verschwindet;
                      &quot;none&quot;: keine Datei
  --quiet             nur Fehler und Ergebnisse ausgeben, nicht, was vor sich geht
  --verbose           Diagnosen der Bibliothek auf der Standardfehlerausgabe zeigen; sie
                      enthalten Tokens
  --version           die Version ausgeben
  --help              diesen Text ausgeben; &quot;help&quot; bei der Eingabe erklärt die Befehle</translation>
    </message>
    <message>
        <source>--%1 takes a file.</source>
        <translation>--%1 nimmt eine Datei.</translation>
    </message>
    <message>
        <source>The wait was given up. The way back is still looked for; &quot;retry&quot; tries at once.</source>
        <translation>Das Warten wurde abgebrochen. Der Weg zurück wird weiter gesucht; &quot;retry&quot; versucht es sofort.</translation>
    </message>
    <message>
        <source>Trying again now.</source>
        <translation>Neuer Versuch jetzt.</translation>
    </message>
    <message>
        <source>The connection is not lost: the live channel is open.</source>
        <translation>Die Verbindung ist nicht verloren: Der Live-Kanal ist offen.</translation>
    </message>
</context>
</TS>
