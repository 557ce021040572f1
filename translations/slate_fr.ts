<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR" sourcelanguage="en">
<context>
    <name>Drawing</name>
    <message>
        <source>Drawing</source>
        <translation>Dessin</translation>
    </message>
</context>
<context>
    <name>Join</name>
    <message>
        <source>QR code of %1</source>
        <translation>Code QR de %1</translation>
    </message>
</context>
<context>
    <name>Main</name>
    <message>
        <source>Drawing</source>
        <translation>Dessin</translation>
    </message>
    <message>
        <source>Slate</source>
        <translation>Ardoise</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>Projector</source>
        <translation>Projecteur</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Clair</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Sombre</translation>
    </message>
    <message>
        <source>End</source>
        <translation>Terminer</translation>
    </message>
    <message>
        <source>Try now</source>
        <translation>Essayer maintenant</translation>
    </message>
    <message>
        <source>Service</source>
        <translation>Service</translation>
    </message>
    <message>
        <source>User</source>
        <translation>Utilisateur</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Mot de passe</translation>
    </message>
    <message>
        <source>Start a lesson</source>
        <translation>Commencer un cours</translation>
    </message>
    <message>
        <source>Kind of question</source>
        <translation>Genre de question</translation>
    </message>
    <message>
        <source>Multiple choice</source>
        <translation>Choix multiple</translation>
    </message>
    <message>
        <source>Scale</source>
        <translation>Échelle</translation>
    </message>
    <message>
        <source>Yes or no</source>
        <translation>Oui ou non</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Texte</translation>
    </message>
    <message>
        <source>Question</source>
        <translation>Question</translation>
    </message>
    <message>
        <source>Answers, with commas between</source>
        <translation>Réponses, séparées par des virgules</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Arrêter</translation>
    </message>
    <message>
        <source>Ask</source>
        <translation>Demander</translation>
    </message>
    <message>
        <source>Show the class</source>
        <translation>Montrer à la classe</translation>
    </message>
    <message>
        <source>Show the drawing</source>
        <translation>Montrer le dessin</translation>
    </message>
    <message>
        <source>Wipe</source>
        <translation>Effacer</translation>
    </message>
    <message>
        <source>%1 here, %2 have not answered</source>
        <translation>%1 présents, %2 sans réponse</translation>
    </message>
    <message>
        <source>, has not answered</source>
        <translation>, n’a pas répondu</translation>
    </message>
    <message>
        <source>, has left</source>
        <translation>, est parti</translation>
    </message>
</context>
<context>
    <name>Projector</name>
    <message>
        <source>For the class</source>
        <translation>Pour la classe</translation>
    </message>
    <message>
        <source>%1 here</source>
        <translation>%1 présents</translation>
    </message>
    <message>
        <source>%1 of %2 answered</source>
        <translation>%1 sur %2 ont répondu</translation>
    </message>
</context>
</TS>
