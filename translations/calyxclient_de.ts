<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>Calyx::Assessment</name>
    <message>
        <source>An assessment needs a question.</source>
        <translation>Ein Test braucht eine Frage.</translation>
    </message>
    <message>
        <source>The time cannot be negative.</source>
        <translation>Die Zeit kann nicht negativ sein.</translation>
    </message>
    <message>
        <source>Question %1: %2</source>
        <translation>Frage %1: %2</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>Learner</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Richtig</translation>
    </message>
</context>
<context>
    <name>Calyx::Lesson</name>
    <message>
        <source>No lesson is open.</source>
        <translation>Es läuft keine Stunde.</translation>
    </message>
    <message>
        <source>Log out before you go to another service.</source>
        <translation>Melden Sie sich ab, bevor Sie zu einem anderen Dienst wechseln.</translation>
    </message>
    <message>
        <source>Log in first.</source>
        <translation>Melden Sie sich zuerst an.</translation>
    </message>
    <message>
        <source>A lesson is open already.</source>
        <translation>Es läuft schon eine Stunde.</translation>
    </message>
    <message>
        <source>There is no such card.</source>
        <translation>Diese Karte gibt es nicht.</translation>
    </message>
    <message>
        <source>There is no picture.</source>
        <translation>Es ist kein Bild da.</translation>
    </message>
    <message>
        <source>Is the presenter there?</source>
        <translation>Ist die Lehrkraft da?</translation>
    </message>
    <message>
        <source>Which lesson is it?</source>
        <translation>Welche Stunde ist es?</translation>
    </message>
    <message>
        <source>Which cards are there?</source>
        <translation>Welche Karten gibt es?</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Resume</source>
        <translation>Weiter</translation>
    </message>
    <message>
        <source>Lock all</source>
        <translation>Alle sperren</translation>
    </message>
    <message>
        <source>Unlock all</source>
        <translation>Alle freigeben</translation>
    </message>
    <message>
        <source>Next card</source>
        <translation>Nächste Karte</translation>
    </message>
    <message>
        <source>Previous card</source>
        <translation>Vorige Karte</translation>
    </message>
    <message>
        <source>Show the card</source>
        <translation>Karte zeigen</translation>
    </message>
    <message>
        <source>Add a picture</source>
        <translation>Bild hinzufügen</translation>
    </message>
    <message>
        <source>End the lesson</source>
        <translation>Stunde beenden</translation>
    </message>
    <message>
        <source>Please look at your teacher.</source>
        <translation>Bitte schau nach vorn zu deiner Lehrkraft.</translation>
    </message>
    <message>
        <source>You can go on.</source>
        <translation>Du kannst weitermachen.</translation>
    </message>
    <message>
        <source>The journal %1 cannot be written.</source>
        <translation>Das Protokoll %1 kann nicht geschrieben werden.</translation>
    </message>
    <message>
        <source>%1 holds no lesson that can be taken up.</source>
        <translation>%1 enthält keine Stunde, die sich fortsetzen lässt.</translation>
    </message>
    <message>
        <source>Your answer is right.</source>
        <translation>Deine Antwort ist richtig.</translation>
    </message>
    <message>
        <source>Your answer is not right.</source>
        <translation>Deine Antwort ist nicht richtig.</translation>
    </message>
    <message>
        <source>Right is: %1.</source>
        <translation>Richtig ist: %1.</translation>
    </message>
    <message>
        <source> or </source>
        <translation> oder </translation>
    </message>
    <message>
        <source>Picture</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>The address of the service is missing.</source>
        <translation>Die Adresse des Dienstes fehlt.</translation>
    </message>
    <message>
        <source>User names and passwords hold no control characters.</source>
        <translation>Benutzernamen und Passwörter enthalten keine Steuerzeichen.</translation>
    </message>
    <message>
        <source>%1 cannot be written: %2</source>
        <translation>%1 kann nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>Only this machine can reach that address, and it is in no network.</source>
        <translation>Nur dieser Rechner erreicht diese Adresse, und er ist in keinem Netzwerk.</translation>
    </message>
    <message>
        <source>Only this machine can reach that address. For phones, start the service with --host %1.</source>
        <translation>Nur dieser Rechner erreicht diese Adresse. Für Telefone starten Sie den Dienst mit --host %1.</translation>
    </message>
    <message>
        <source>The connection is lost. Trying again in %1 s.</source>
        <translation>Die Verbindung ist verloren. Neuer Versuch in %1 s.</translation>
    </message>
    <message>
        <source>The connection is lost. Trying again now.</source>
        <translation>Die Verbindung ist verloren. Neuer Versuch jetzt.</translation>
    </message>
    <message>
        <source>The connection is lost.</source>
        <translation>Die Verbindung ist verloren.</translation>
    </message>
    <message>
        <source>%1 cannot be a card: it is no picture, or too large.</source>
        <translation>%1 kann keine Karte sein: Es ist kein Bild oder zu groß.</translation>
    </message>
</context>
<context>
    <name>Calyx::LessonError</name>
    <message>
        <source>The classroom service cannot be reached.</source>
        <translation>Der Unterrichtsdienst ist nicht erreichbar.</translation>
    </message>
    <message>
        <source>Check the address and the network, then try again.</source>
        <translation>Prüfen Sie Adresse und Netzwerk und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>The classroom service does not answer.</source>
        <translation>Der Unterrichtsdienst antwortet nicht.</translation>
    </message>
    <message>
        <source>Check the network, then try again in a moment.</source>
        <translation>Prüfen Sie das Netzwerk und versuchen Sie es gleich noch einmal.</translation>
    </message>
    <message>
        <source>Something else answers at this address.</source>
        <translation>Unter dieser Adresse antwortet etwas anderes.</translation>
    </message>
    <message>
        <source>Check the address. If this network wants you to log in to it, open a browser and do so first.</source>
        <translation>Prüfen Sie die Adresse. Verlangt dieses Netzwerk eine Anmeldung, dann öffnen Sie einen Browser und melden Sie sich dort zuerst an.</translation>
    </message>
    <message>
        <source>The service cannot prove that it is the one you want.</source>
        <translation>Der Dienst kann nicht beweisen, dass er der richtige ist.</translation>
    </message>
    <message>
        <source>Its certificate is signed by an authority that this computer does not know. Have the authority’s certificate installed, and do not go on if you did not expect this.</source>
        <translation>Sein Zertifikat stammt von einer Stelle, die dieser Computer nicht kennt. Lassen Sie das Zertifikat dieser Stelle installieren; wenn Sie damit nicht gerechnet haben, brechen Sie ab.</translation>
    </message>
    <message>
        <source>The user name or the password is wrong.</source>
        <translation>Der Benutzername oder das Passwort ist falsch.</translation>
    </message>
    <message>
        <source>Small and capital letters are different.</source>
        <translation>Groß- und Kleinschreibung wird unterschieden.</translation>
    </message>
    <message>
        <source>The service has ended your login.</source>
        <translation>Der Dienst hat Sie abgemeldet.</translation>
    </message>
    <message>
        <source>Log in again.</source>
        <translation>Melden Sie sich noch einmal an.</translation>
    </message>
    <message>
        <source>The service refuses.</source>
        <translation>Der Dienst lehnt ab.</translation>
    </message>
    <message>
        <source>Try again. If it goes on, ask whoever runs the service.</source>
        <translation>Versuchen Sie es noch einmal. Bleibt es dabei, fragen Sie, wer den Dienst betreibt.</translation>
    </message>
    <message>
        <source>The service does not know the lesson any more.</source>
        <translation>Der Dienst kennt die Stunde nicht mehr.</translation>
    </message>
    <message>
        <source>Start a new one. What was collected so far is still here.</source>
        <translation>Beginnen Sie eine neue. Was bisher gesammelt wurde, ist noch hier.</translation>
    </message>
    <message>
        <source>No live connection to the lesson can be opened.</source>
        <translation>Es lässt sich keine Live-Verbindung zur Stunde öffnen.</translation>
    </message>
    <message>
        <source>Try again. If it goes on, a filter between here and the service stands in the way.</source>
        <translation>Versuchen Sie es noch einmal. Bleibt es dabei, steht zwischen hier und dem Dienst ein Filter im Weg.</translation>
    </message>
    <message>
        <source>This is too large to be sent.</source>
        <translation>Das ist zu groß, um gesendet zu werden.</translation>
    </message>
    <message>
        <source>Take a smaller picture.</source>
        <translation>Nehmen Sie ein kleineres Bild.</translation>
    </message>
    <message>
        <source>This cannot be done.</source>
        <translation>Das geht nicht.</translation>
    </message>
    <message>
        <source>Cancelled.</source>
        <translation>Abgebrochen.</translation>
    </message>
    <message>
        <source>End a lesson that is still open, then start this one again.</source>
        <translation>Beenden Sie eine Stunde, die noch läuft, und beginnen Sie diese dann noch einmal.</translation>
    </message>
</context>
<context>
    <name>Calyx::Poll</name>
    <message>
        <source> (over)</source>
        <translation> (beendet)</translation>
    </message>
    <message>
        <source> (paused)</source>
        <translation> (Pause)</translation>
    </message>
    <message>
        <source> (until %1)</source>
        <translation> (bis %1)</translation>
    </message>
    <message>
        <source>hh:mm:ss</source>
        <translation>HH:mm:ss</translation>
    </message>
    <message>
        <source>%1%2: %3 of %4 answered</source>
        <translation>%1%2: %3 von %4 haben geantwortet</translation>
    </message>
</context>
<context>
    <name>Calyx::PollResults</name>
    <message>
        <source>(empty)</source>
        <translation>(leer)</translation>
    </message>
    <message>
        <source>Others</source>
        <translation>Andere</translation>
    </message>
    <message>
        <source>Answer</source>
        <translation>Antwort</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>Count</source>
        <translation>Anzahl</translation>
    </message>
    <message>
        <source>Share</source>
        <translation>Anteil</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Richtig</translation>
    </message>
</context>
<context>
    <name>Calyx::Question</name>
    <message>
        <source>True or false</source>
        <translation>Wahr oder falsch</translation>
    </message>
    <message>
        <source>Yes, no or other</source>
        <translation>Ja, nein oder anderes</translation>
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
        <source>Put in order</source>
        <translation>Reihenfolge</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>Words</source>
        <translation>Wörter</translation>
    </message>
    <message>
        <source>Number</source>
        <translation>Zahl</translation>
    </message>
    <message>
        <source>Creative</source>
        <translation>Kreativ</translation>
    </message>
    <message>
        <source>Formula</source>
        <translation>Formel</translation>
    </message>
    <message>
        <source>True</source>
        <translation>Wahr</translation>
    </message>
    <message>
        <source>False</source>
        <translation>Falsch</translation>
    </message>
    <message>
        <source>Don’t know</source>
        <translation>Weiß nicht</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Ja</translation>
    </message>
    <message>
        <source>No</source>
        <translation>Nein</translation>
    </message>
    <message>
        <source>Maybe</source>
        <translation>Vielleicht</translation>
    </message>
    <message>
        <source>Unsure</source>
        <translation>Unsicher</translation>
    </message>
    <message>
        <source>Other</source>
        <translation>Anderes</translation>
    </message>
    <message>
        <source>A question of this kind has no options.</source>
        <translation>Eine Frage dieser Art hat keine Antworten zur Auswahl.</translation>
    </message>
    <message>
        <source>A question of this kind has from %1 to %2 options, not %3.</source>
        <translation>Eine Frage dieser Art hat %1 bis %2 Antworten zur Auswahl, nicht %3.</translation>
    </message>
    <message>
        <source>A number has from 0 to %1 decimals, not %2.</source>
        <translation>Eine Zahl hat 0 bis %1 Nachkommastellen, nicht %2.</translation>
    </message>
    <message>
        <source>A learner chooses from 0 to %1 options, not %2.</source>
        <translation>Wer lernt, wählt 0 bis %1 Antworten, nicht %2.</translation>
    </message>
    <message>
        <source>The text of the question is too long.</source>
        <translation>Der Text der Frage ist zu lang.</translation>
    </message>
    <message>
        <source>“%1” cannot be the right answer to this question.</source>
        <translation>„%1“ kann nicht die richtige Antwort auf diese Frage sein.</translation>
    </message>
</context>
</TS>
