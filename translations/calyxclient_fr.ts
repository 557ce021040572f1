<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR" sourcelanguage="en">
<context>
    <name>Calyx::Assessment</name>
    <message>
        <source>An assessment needs a question.</source>
        <translation>Une évaluation demande au moins une question.</translation>
    </message>
    <message>
        <source>The time cannot be negative.</source>
        <translation>Le temps ne peut pas être négatif.</translation>
    </message>
    <message>
        <source>Question %1: %2</source>
        <translation>Question %1&#xa0;: %2</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 sur %2</translation>
    </message>
    <message>
        <source>Learner</source>
        <translation>Élève</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Juste</translation>
    </message>
</context>
<context>
    <name>Calyx::Lesson</name>
    <message>
        <source>No lesson is open.</source>
        <translation>Aucun cours n’est ouvert.</translation>
    </message>
    <message>
        <source>Log out before you go to another service.</source>
        <translation>Déconnectez-vous avant de passer à un autre service.</translation>
    </message>
    <message>
        <source>Log in first.</source>
        <translation>Connectez-vous d’abord.</translation>
    </message>
    <message>
        <source>A lesson is open already.</source>
        <translation>Un cours est déjà ouvert.</translation>
    </message>
    <message>
        <source>There is no such card.</source>
        <translation>Cette carte n’existe pas.</translation>
    </message>
    <message>
        <source>There is no picture.</source>
        <translation>Il n’y a pas d’image.</translation>
    </message>
    <message>
        <source>Is the presenter there?</source>
        <translation>L’enseignant est-il là&#xa0;?</translation>
    </message>
    <message>
        <source>Which lesson is it?</source>
        <translation>De quel cours s’agit-il&#xa0;?</translation>
    </message>
    <message>
        <source>Which cards are there?</source>
        <translation>Quelles cartes y a-t-il&#xa0;?</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Resume</source>
        <translation>Reprendre</translation>
    </message>
    <message>
        <source>Lock all</source>
        <translation>Tout verrouiller</translation>
    </message>
    <message>
        <source>Unlock all</source>
        <translation>Tout déverrouiller</translation>
    </message>
    <message>
        <source>Next card</source>
        <translation>Carte suivante</translation>
    </message>
    <message>
        <source>Previous card</source>
        <translation>Carte précédente</translation>
    </message>
    <message>
        <source>Show the card</source>
        <translation>Montrer la carte</translation>
    </message>
    <message>
        <source>Add a picture</source>
        <translation>Ajouter une image</translation>
    </message>
    <message>
        <source>End the lesson</source>
        <translation>Terminer le cours</translation>
    </message>
    <message>
        <source>Please look at your teacher.</source>
        <translation>Regarde ton enseignant, s’il te plaît.</translation>
    </message>
    <message>
        <source>You can go on.</source>
        <translation>Tu peux continuer.</translation>
    </message>
    <message>
        <source>The journal %1 cannot be written.</source>
        <translation>Le journal %1 ne peut pas être écrit.</translation>
    </message>
    <message>
        <source>%1 holds no lesson that can be taken up.</source>
        <translation>%1 ne contient aucun cours à reprendre.</translation>
    </message>
    <message>
        <source>Your answer is right.</source>
        <translation>Ta réponse est juste.</translation>
    </message>
    <message>
        <source>Your answer is not right.</source>
        <translation>Ta réponse n’est pas juste.</translation>
    </message>
    <message>
        <source>Right is: %1.</source>
        <translation>La bonne réponse&#xa0;: %1.</translation>
    </message>
    <message>
        <source> or </source>
        <translation> ou </translation>
    </message>
    <message>
        <source>Picture</source>
        <translation>Image</translation>
    </message>
    <message>
        <source>The address of the service is missing.</source>
        <translation>L’adresse du service manque.</translation>
    </message>
    <message>
        <source>User names and passwords hold no control characters.</source>
        <translation>Les noms d’utilisateur et les mots de passe ne contiennent pas de caractères de contrôle.</translation>
    </message>
    <message>
        <source>%1 cannot be written: %2</source>
        <translation>%1 ne peut pas être écrit&#xa0;: %2</translation>
    </message>
    <message>
        <source>Only this machine can reach that address, and it is in no network.</source>
        <translation>Seule cette machine atteint cette adresse, et elle n’est sur aucun réseau.</translation>
    </message>
    <message>
        <source>Only this machine can reach that address. For phones, start the service with --host %1.</source>
        <translation>Seule cette machine atteint cette adresse. Pour des téléphones, lancez le service avec --host %1.</translation>
    </message>
    <message>
        <source>The connection is lost. Trying again in %1 s.</source>
        <translation>La liaison est perdue. Nouvel essai dans %1 s.</translation>
    </message>
    <message>
        <source>The connection is lost. Trying again now.</source>
        <translation>La liaison est perdue. Nouvel essai en cours.</translation>
    </message>
    <message>
        <source>The connection is lost.</source>
        <translation>La liaison est perdue.</translation>
    </message>
    <message>
        <source>%1 cannot be a card: it is no picture, or too large.</source>
        <translation>%1 ne peut pas être une carte&#xa0;: ce n’est pas une image, ou elle est trop grande.</translation>
    </message>
</context>
<context>
    <name>Calyx::LessonError</name>
    <message>
        <source>The classroom service cannot be reached.</source>
        <translation>Le service de classe est injoignable.</translation>
    </message>
    <message>
        <source>Check the address and the network, then try again.</source>
        <translation>Vérifiez l’adresse et le réseau, puis réessayez.</translation>
    </message>
    <message>
        <source>The classroom service does not answer.</source>
        <translation>Le service de classe ne répond pas.</translation>
    </message>
    <message>
        <source>Check the network, then try again in a moment.</source>
        <translation>Vérifiez le réseau, puis réessayez dans un instant.</translation>
    </message>
    <message>
        <source>Something else answers at this address.</source>
        <translation>Autre chose répond à cette adresse.</translation>
    </message>
    <message>
        <source>Check the address. If this network wants you to log in to it, open a browser and do so first.</source>
        <translation>Vérifiez l’adresse. Si ce réseau demande une connexion, ouvrez d’abord un navigateur et connectez-vous.</translation>
    </message>
    <message>
        <source>The service cannot prove that it is the one you want.</source>
        <translation>Le service ne peut pas prouver qu’il est bien celui que vous voulez.</translation>
    </message>
    <message>
        <source>Its certificate is signed by an authority that this computer does not know. Have the authority’s certificate installed, and do not go on if you did not expect this.</source>
        <translation>Son certificat est signé par une autorité que cet ordinateur ne connaît pas. Faites installer le certificat de cette autorité, et n’allez pas plus loin si vous ne vous y attendiez pas.</translation>
    </message>
    <message>
        <source>The user name or the password is wrong.</source>
        <translation>Le nom d’utilisateur ou le mot de passe est faux.</translation>
    </message>
    <message>
        <source>Small and capital letters are different.</source>
        <translation>Les majuscules et les minuscules sont distinguées.</translation>
    </message>
    <message>
        <source>The service has ended your login.</source>
        <translation>Le service a mis fin à votre connexion.</translation>
    </message>
    <message>
        <source>Log in again.</source>
        <translation>Reconnectez-vous.</translation>
    </message>
    <message>
        <source>The service refuses.</source>
        <translation>Le service refuse.</translation>
    </message>
    <message>
        <source>Try again. If it goes on, ask whoever runs the service.</source>
        <translation>Réessayez. Si cela continue, adressez-vous à qui gère le service.</translation>
    </message>
    <message>
        <source>The service does not know the lesson any more.</source>
        <translation>Le service ne connaît plus ce cours.</translation>
    </message>
    <message>
        <source>Start a new one. What was collected so far is still here.</source>
        <translation>Commencez-en un autre. Ce qui a été recueilli jusqu’ici est toujours là.</translation>
    </message>
    <message>
        <source>No live connection to the lesson can be opened.</source>
        <translation>Aucune liaison directe avec le cours ne peut être ouverte.</translation>
    </message>
    <message>
        <source>Try again. If it goes on, a filter between here and the service stands in the way.</source>
        <translation>Réessayez. Si cela continue, un filtre fait obstacle entre ici et le service.</translation>
    </message>
    <message>
        <source>This is too large to be sent.</source>
        <translation>C’est trop grand pour être envoyé.</translation>
    </message>
    <message>
        <source>Take a smaller picture.</source>
        <translation>Prenez une image plus petite.</translation>
    </message>
    <message>
        <source>This cannot be done.</source>
        <translation>C’est impossible.</translation>
    </message>
    <message>
        <source>Cancelled.</source>
        <translation>Annulé.</translation>
    </message>
    <message>
        <source>End a lesson that is still open, then start this one again.</source>
        <translation>Terminez un cours encore ouvert, puis recommencez celui-ci.</translation>
    </message>
</context>
<context>
    <name>Calyx::Poll</name>
    <message>
        <source> (over)</source>
        <translation> (terminé)</translation>
    </message>
    <message>
        <source> (paused)</source>
        <translation> (en pause)</translation>
    </message>
    <message>
        <source> (until %1)</source>
        <translation> (jusqu’à %1)</translation>
    </message>
    <message>
        <source>hh:mm:ss</source>
        <translation>HH:mm:ss</translation>
    </message>
    <message>
        <source>%1%2: %3 of %4 answered</source>
        <translation>%1%2&#xa0;: %3 réponses sur %4</translation>
    </message>
</context>
<context>
    <name>Calyx::PollResults</name>
    <message>
        <source>(empty)</source>
        <translation>(vide)</translation>
    </message>
    <message>
        <source>Others</source>
        <translation>Autres</translation>
    </message>
    <message>
        <source>Answer</source>
        <translation>Réponse</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Texte</translation>
    </message>
    <message>
        <source>Count</source>
        <translation>Nombre</translation>
    </message>
    <message>
        <source>Share</source>
        <translation>Part</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Juste</translation>
    </message>
</context>
<context>
    <name>Calyx::Question</name>
    <message>
        <source>True or false</source>
        <translation>Vrai ou faux</translation>
    </message>
    <message>
        <source>Yes, no or other</source>
        <translation>Oui, non ou autre</translation>
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
        <source>Put in order</source>
        <translation>Mise en ordre</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Texte</translation>
    </message>
    <message>
        <source>Words</source>
        <translation>Mots</translation>
    </message>
    <message>
        <source>Number</source>
        <translation>Nombre</translation>
    </message>
    <message>
        <source>Creative</source>
        <translation>Création</translation>
    </message>
    <message>
        <source>Formula</source>
        <translation>Formule</translation>
    </message>
    <message>
        <source>True</source>
        <translation>Vrai</translation>
    </message>
    <message>
        <source>False</source>
        <translation>Faux</translation>
    </message>
    <message>
        <source>Don’t know</source>
        <translation>Ne sais pas</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Oui</translation>
    </message>
    <message>
        <source>No</source>
        <translation>Non</translation>
    </message>
    <message>
        <source>Maybe</source>
        <translation>Peut-être</translation>
    </message>
    <message>
        <source>Unsure</source>
        <translation>Pas sûr</translation>
    </message>
    <message>
        <source>Other</source>
        <translation>Autre</translation>
    </message>
    <message>
        <source>A question of this kind has no options.</source>
        <translation>Une question de ce genre n’a pas d’options.</translation>
    </message>
    <message>
        <source>A question of this kind has from %1 to %2 options, not %3.</source>
        <translation>Une question de ce genre a de %1 à %2 options, pas %3.</translation>
    </message>
    <message>
        <source>A number has from 0 to %1 decimals, not %2.</source>
        <translation>Un nombre a de 0 à %1 décimales, pas %2.</translation>
    </message>
    <message>
        <source>A learner chooses from 0 to %1 options, not %2.</source>
        <translation>Un élève choisit de 0 à %1 options, pas %2.</translation>
    </message>
    <message>
        <source>The text of the question is too long.</source>
        <translation>Le texte de la question est trop long.</translation>
    </message>
    <message>
        <source>“%1” cannot be the right answer to this question.</source>
        <translation>«&#xa0;%1&#xa0;» ne peut pas être la bonne réponse à cette question.</translation>
    </message>
</context>
</TS>
