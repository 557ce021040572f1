<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR" sourcelanguage="en">
<context>
    <name>Words</name>
    <message>
        <source>there is no further card</source>
        <translation>il n’y a pas d’autre carte</translation>
    </message>
    <message>
        <source>there is no earlier card</source>
        <translation>il n’y a pas de carte précédente</translation>
    </message>
    <message>
        <source>there is no card</source>
        <translation>il n’y a pas de carte</translation>
    </message>
    <message>
        <source>this is no picture</source>
        <translation>ce n’est pas une image</translation>
    </message>
    <message>
        <source>neither a poll nor an assessment is under way</source>
        <translation>ni sondage ni évaluation n’est en cours</translation>
    </message>
    <message>
        <source>Card shown: %1</source>
        <translation>Carte montrée&#xa0;: %1</translation>
    </message>
    <message>
        <source>  The remote control has joined</source>
        <translation>  La télécommande s’est jointe</translation>
    </message>
    <message>
        <source>  The remote control has left</source>
        <translation>  La télécommande est partie</translation>
    </message>
    <message>
        <source>  + %1 has joined, %2 here</source>
        <translation>  + %1 arrive, %2 ici</translation>
    </message>
    <message>
        <source>  + %1 have joined, %2 here</source>
        <translation>  + %1 arrivent, %2 ici</translation>
    </message>
    <message>
        <source>  - %1 has left, %2 here</source>
        <translation>  - %1 part, %2 ici</translation>
    </message>
    <message>
        <source>  - %1 have left, %2 here</source>
        <translation>  - %1 partent, %2 ici</translation>
    </message>
    <message>
        <source>  Late: the answer of %1</source>
        <translation>  En retard&#xa0;: la réponse de %1</translation>
    </message>
    <message>
        <source>  Late: the answers of %1</source>
        <translation>  En retard&#xa0;: les réponses de %1</translation>
    </message>
    <message>
        <source>The connection is lost. Trying again.</source>
        <translation>La liaison est perdue. Nouvel essai.</translation>
    </message>
    <message>
        <source>The connection is back.</source>
        <translation>La liaison est rétablie.</translation>
    </message>
    <message>
        <source>  Trying again in %1 s.</source>
        <translation>  Nouvel essai dans %1 s.</translation>
    </message>
    <message>
        <source>  %1 has answered all questions, %2 of %3 have</source>
        <translation>  %1 a répondu à toutes les questions, comme %2 sur %3</translation>
    </message>
    <message>
        <source>  Remote control: %1</source>
        <translation>  Télécommande&#xa0;: %1</translation>
    </message>
    <message>
        <source>  Not done: %1.</source>
        <translation>  Pas fait&#xa0;: %1.</translation>
    </message>
    <message>
        <source>  Card %1 of %2: %3</source>
        <translation>  Carte %1 sur %2&#xa0;: %3</translation>
    </message>
    <message>
        <source>  An answer of %1 does not count</source>
        <translation>  Une réponse de %1 ne compte pas</translation>
    </message>
    <message>
        <source>  %1 asks for question %2, and gets none</source>
        <translation>  %1 demande la question %2 et n’en reçoit pas</translation>
    </message>
    <message>
        <source>  A message of the unknown type &quot;%1&quot; from %2: %3</source>
        <translation>  Un message du type inconnu &quot;%1&quot; de %2&#xa0;: %3</translation>
    </message>
    <message>
        <source>  Not done: it came from %1.</source>
        <translation>  Pas fait&#xa0;: cela venait de %1.</translation>
    </message>
    <message>
        <source>The connection is lost. Trying again in %1 s (r: now).</source>
        <translation>La liaison est perdue. Nouvel essai dans %1 s (r&#xa0;: maintenant).</translation>
    </message>
    <message>
        <source>At work: %1</source>
        <translation>En cours&#xa0;: %1</translation>
    </message>
    <message>
        <source>Waiting: %1</source>
        <translation>Attente&#xa0;: %1</translation>
    </message>
    <message>
        <source>  %1  Ctrl-C gives up</source>
        <translation>  %1  Ctrl-C abandonne</translation>
    </message>
    <message>
        <source>&quot;calyx-presenter --help&quot; tells more.</source>
        <translation>&quot;calyx-presenter --help&quot; en dit plus.</translation>
    </message>
    <message>
        <source>Type %1.</source>
        <translation>Tapez %1.</translation>
    </message>
    <message>
        <source>&quot;help&quot; lists the commands, Tab completes them, &quot;quit&quot; ends.</source>
        <translation>&quot;help&quot; donne les commandes, Tab les complète, &quot;quit&quot; termine.</translation>
    </message>
    <message>
        <source>&quot;help&quot; lists the commands, &quot;quit&quot; ends.</source>
        <translation>&quot;help&quot; donne les commandes, &quot;quit&quot; termine.</translation>
    </message>
    <message>
        <source>usage: calyx-presenter --server URL [options]

Teaches a live classroom lesson: from a script, or by commands typed at a prompt.</source>
        <translation>usage&#xa0;: calyx-presenter --server URL [options]

Donne un cours en direct&#xa0;: d’après un script, ou par des commandes tapées.</translation>
    </message>
    <message>
        <source>In a lesson, one command stands on a line; &quot;#&quot; begins a comment line. A failed command ends a
script and anything piped in, not what is typed at a prompt. A session that is open at the end
is stopped, and the user is logged out. Ctrl-C (SIGINT) and SIGTERM end the lesson in the same
way; at the prompt, Ctrl-C first clears the line or gives up what is under way, and asks before it
ends a session. A third such signal ends the program at once.</source>
        <translation>Dans un cours, il y a une commande par ligne&#xa0;; &quot;#&quot; commence une ligne de commentaire. Une
commande qui échoue met fin à un script et à ce qui vient d’un tube, pas à ce qui est tapé.
Une session ouverte à la fin est arrêtée, et vous êtes déconnecté. Ctrl-C (SIGINT) et SIGTERM
terminent le cours de même&#xa0;; à l’invite, Ctrl-C efface d’abord la ligne ou abandonne ce qui
est en cours, et demande avant de terminer une session. Un troisième signal de ce genre met
fin au programme aussitôt.</translation>
    </message>
    <message>
        <source>Exit status:
  0    the whole lesson did what it says, or the remote control ended it
  1    something in it failed
  2    the command line or the script is wrong; nothing was done
  3    the service could not be reached
  130  ended by SIGINT; 143 by SIGTERM, 129 by SIGHUP</source>
        <translation>Code de retour&#xa0;:
  0    le cours a fait tout ce qu’il dit, ou la télécommande l’a terminé
  1    quelque chose y a échoué
  2    la ligne de commande ou le script est faux&#xa0;; rien n’a été fait
  3    le service était injoignable
  130  terminé par SIGINT&#xa0;; 143 par SIGTERM, 129 par SIGHUP</translation>
    </message>
    <message>
        <source>--server is missing. Name the classroom service&apos;s address.</source>
        <translation>--server manque. Indiquez l’adresse du service de classe.</translation>
    </message>
    <message>
        <source>--server takes an address such as https://classroom.example, not &quot;%1&quot;.</source>
        <translation>--server prend une adresse comme https://classroom.example, pas &quot;%1&quot;.</translation>
    </message>
    <message>
        <source>--transports takes %1, not &quot;%2&quot;.%3</source>
        <translation>--transports prend %1, pas &quot;%2&quot;.%3</translation>
    </message>
    <message>
        <source>There is no option &quot;%1&quot;.%2</source>
        <translation>Il n’y a pas d’option &quot;%1&quot;.%2</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not an option. A lesson is named with --script.</source>
        <translation>&quot;%1&quot; n’est pas une option. Un cours se nomme avec --script.</translation>
    </message>
    <message>
        <source>--transports takes at least one transport.</source>
        <translation>--transports prend au moins un transport.</translation>
    </message>
    <message>
        <source>--open-limit takes a number of seconds, not &quot;%1&quot;.</source>
        <translation>--open-limit prend un nombre de secondes, pas &quot;%1&quot;.</translation>
    </message>
    <message>
        <source>--quiet and --verbose exclude each other.</source>
        <translation>--quiet et --verbose s’excluent.</translation>
    </message>
    <message>
        <source>Examples:</source>
        <translation>Exemples&#xa0;:</translation>
    </message>
    <message>
        <source>A lesson:</source>
        <translation>Un cours&#xa0;:</translation>
    </message>
    <message>
        <source>Interrupted.</source>
        <translation>Interrompu.</translation>
    </message>
    <message>
        <source>Not done: %1</source>
        <translation>Pas fait&#xa0;: %1</translation>
    </message>
    <message>
        <source>A session with %1 is open. Ctrl-C again, or &quot;quit&quot;, ends it.</source>
        <translation>Une session avec %1 est ouverte. Encore Ctrl-C, ou &quot;quit&quot;, y met fin.</translation>
    </message>
    <message>
        <source>Interrupted: the lesson is ended.</source>
        <translation>Interrompu&#xa0;: le cours est terminé.</translation>
    </message>
    <message>
        <source>%1 is no lesson: it is not text in UTF-8.</source>
        <translation>%1 n’est pas un cours&#xa0;: ce n’est pas du texte en UTF-8.</translation>
    </message>
    <message>
        <source>%1 is no lesson: %2 of its %3 lines begin with no command.</source>
        <translation>%1 n’est pas un cours&#xa0;: %2 de ses %3 lignes ne commencent pas par une commande.</translation>
    </message>
    <message>
        <source>and %1 more.</source>
        <translation>et %1 de plus.</translation>
    </message>
    <message>
        <source>The script %1 cannot be read: %2.</source>
        <translation>Le script %1 ne peut pas être lu&#xa0;: %2.</translation>
    </message>
    <message>
        <source>%1 is no lesson: it is larger than 16 MiB.</source>
        <translation>%1 n’est pas un cours&#xa0;: il dépasse 16 Mio.</translation>
    </message>
    <message>
        <source>Check --user and --password.</source>
        <translation>Vérifiez --user et --password.</translation>
    </message>
    <message>
        <source>Get a new code from the provider and try again.</source>
        <translation>Obtenez un nouveau code du fournisseur et réessayez.</translation>
    </message>
    <message>
        <source>Logged in as %1.</source>
        <translation>Connecté en tant que %1.</translation>
    </message>
    <message>
        <source>Session %1 was not ended: &quot;session resume&quot; takes it up.</source>
        <translation>La session %1 n’a pas été terminée&#xa0;: &quot;session resume&quot; la reprend.</translation>
    </message>
    <message>
        <source>the password of %1, which is not shown</source>
        <translation>le mot de passe de %1, qui n’est pas affiché</translation>
    </message>
    <message>
        <source>The service wants %1 to register first. It knows: %2. Use &quot;register NAME=VALUE ...&quot; to complete that.</source>
        <translation>Le service veut que %1 s’inscrive d’abord. Il sait&#xa0;: %2. Complétez avec &quot;register NAME=VALUE ...&quot;.</translation>
    </message>
    <message>
        <source>The check</source>
        <translation>Vérification</translation>
    </message>
    <message>
        <source>The service at %1 answers.</source>
        <translation>Le service à %1 répond.</translation>
    </message>
    <message>
        <source>Nobody to log in. Use --user, or &quot;login USER PASSWORD&quot;.</source>
        <translation>Personne à connecter. Employez --user, ou &quot;login USER PASSWORD&quot;.</translation>
    </message>
    <message>
        <source>The login was given up.</source>
        <translation>La connexion a été abandonnée.</translation>
    </message>
    <message>
        <source>Login</source>
        <translation>Connexion</translation>
    </message>
    <message>
        <source>Login with the device token</source>
        <translation>Connexion avec le jeton d’appareil</translation>
    </message>
    <message>
        <source>Get a new one with &quot;token&quot;.</source>
        <translation>Obtenez-en un autre avec &quot;token&quot;.</translation>
    </message>
    <message>
        <source>The question who is logged in</source>
        <translation>Question de qui est connecté</translation>
    </message>
    <message>
        <source>Login with %1</source>
        <translation>Connexion avec %1</translation>
    </message>
    <message>
        <source>No registration is asked for. Use &quot;login oauth&quot; first.</source>
        <translation>Aucune inscription n’est demandée. Employez d’abord &quot;login oauth&quot;.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not of the form NAME=VALUE.</source>
        <translation>&quot;%1&quot; n’a pas la forme NAME=VALUE.</translation>
    </message>
    <message>
        <source>The registration holds no text. Give at least one NAME=VALUE.</source>
        <translation>L’inscription ne contient pas de texte. Donnez au moins un NAME=VALUE.</translation>
    </message>
    <message>
        <source>Registration</source>
        <translation>Inscription</translation>
    </message>
    <message>
        <source>Change a value, or begin again with &quot;login oauth&quot;.</source>
        <translation>Changez une valeur, ou recommencez avec &quot;login oauth&quot;.</translation>
    </message>
    <message>
        <source>The request for a device token</source>
        <translation>Demande d’un jeton d’appareil</translation>
    </message>
    <message>
        <source>Device token: %1</source>
        <translation>Jeton d’appareil&#xa0;: %1</translation>
    </message>
    <message>
        <source>The request was given up.</source>
        <translation>La demande a été abandonnée.</translation>
    </message>
    <message>
        <source>Nobody is logged in.</source>
        <translation>Personne n’est connecté.</translation>
    </message>
    <message>
        <source>%1 is logged in.</source>
        <translation>%1 est connecté.</translation>
    </message>
    <message>
        <source>There is no earlier login to repeat. Use &quot;login&quot;.</source>
        <translation>Il n’y a pas de connexion à répéter. Employez &quot;login&quot;.</translation>
    </message>
    <message>
        <source>Use &quot;login&quot; instead.</source>
        <translation>Employez plutôt &quot;login&quot;.</translation>
    </message>
    <message>
        <source>The keep-alive</source>
        <translation>Signe de vie</translation>
    </message>
    <message>
        <source>The service was asked to keep the login alive.</source>
        <translation>Le service a été prié de maintenir la connexion.</translation>
    </message>
    <message>
        <source>Logged out.</source>
        <translation>Déconnecté.</translation>
    </message>
    <message>
        <source>Ask whether the service answers.</source>
        <translation>Demander si le service répond.</translation>
    </message>
    <message>
        <source>USER and PASSWORD are offered when the service asks for HTTP authentication.</source>
        <translation>USER et PASSWORD sont proposés quand le service demande une authentification HTTP.</translation>
    </message>
    <message>
        <source>Log in.</source>
        <translation>Se connecter.</translation>
    </message>
    <message>
        <source>Without USER and PASSWORD, those of the command line and of CALYX_PASSWORD are taken.</source>
        <translation>Sans USER ni PASSWORD, ceux de la ligne de commande et de CALYX_PASSWORD sont pris.</translation>
    </message>
    <message>
        <source>Log in with a device token instead of a password.</source>
        <translation>Se connecter avec un jeton d’appareil au lieu d’un mot de passe.</translation>
    </message>
    <message>
        <source>Log in with the code of an OAuth provider.</source>
        <translation>Se connecter avec le code d’un fournisseur OAuth.</translation>
    </message>
    <message>
        <source>The service may want a new user to register first: &quot;register&quot; does that.</source>
        <translation>Le service peut vouloir qu’un nouvel utilisateur s’inscrive d’abord&#xa0;: &quot;register&quot; le fait.</translation>
    </message>
    <message>
        <source>Complete the registration that an OAuth login has asked for.</source>
        <translation>Compléter l’inscription qu’une connexion OAuth a demandée.</translation>
    </message>
    <message>
        <source>Adds the values to what the service knows, or changes it, and logs in.</source>
        <translation>Ajoute les valeurs à ce que le service sait, ou le change, et connecte.</translation>
    </message>
    <message>
        <source>Get a token for later logins of this device.</source>
        <translation>Obtenir un jeton pour les connexions à venir de cet appareil.</translation>
    </message>
    <message>
        <source>DEVICE is the device&apos;s id, NAME what people call it. This logs in, too.</source>
        <translation>DEVICE est l’identifiant de l’appareil, NAME son nom courant. Cela connecte aussi.</translation>
    </message>
    <message>
        <source>Get a device token with a provider&apos;s code.</source>
        <translation>Obtenir un jeton d’appareil avec le code d’un fournisseur.</translation>
    </message>
    <message>
        <source>Ask the service who is logged in.</source>
        <translation>Demander au service qui est connecté.</translation>
    </message>
    <message>
        <source>Log in again as the last time.</source>
        <translation>Se reconnecter comme la dernière fois.</translation>
    </message>
    <message>
        <source>Keep the login alive.</source>
        <translation>Maintenir la connexion.</translation>
    </message>
    <message>
        <source>Every minute this happens by itself.</source>
        <translation>Chaque minute, cela se fait tout seul.</translation>
    </message>
    <message>
        <source>Stop the session, if one is open, and log out.</source>
        <translation>Arrêter la session, s’il y en a une, et se déconnecter.</translation>
    </message>
    <message>
        <source>There is no poll type &quot;%1&quot;.%2 The poll types are: %3.</source>
        <translation>Il n’y a pas de type de sondage &quot;%1&quot;.%2 Les types de sondage sont&#xa0;: %3.</translation>
    </message>
    <message>
        <source>There is no labelling &quot;%1&quot;.%2 The labellings are: %3.</source>
        <translation>Il n’y a pas d’étiquetage &quot;%1&quot;.%2 Les étiquetages sont&#xa0;: %3.</translation>
    </message>
    <message>
        <source>Only a multiple choice has a number of correct options.</source>
        <translation>Seul un choix multiple a un nombre d’options justes.</translation>
    </message>
    <message>
        <source>A question of type %1 has no choices.</source>
        <translation>Une question de type %1 n’a pas de choix.</translation>
    </message>
    <message>
        <source>&quot;within&quot; takes a number of seconds, as the last words.</source>
        <translation>&quot;within&quot; prend un nombre de secondes, en derniers mots.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; takes yes or no, not &quot;%2&quot;.</source>
        <translation>&quot;%1&quot; prend yes ou no, pas &quot;%2&quot;.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; takes a whole number, not &quot;%2&quot;.</source>
        <translation>&quot;%1&quot; prend un nombre entier, pas &quot;%2&quot;.</translation>
    </message>
    <message>
        <source>No learner here is called &quot;%1&quot;.%2 See &quot;learners&quot;.</source>
        <translation>Aucun élève ici ne s’appelle &quot;%1&quot;.%2 Voyez &quot;learners&quot;.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; can be %2. Say more of the name.</source>
        <translation>&quot;%1&quot; peut être %2. Donnez plus du nom.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not understood. See &quot;help assessment&quot;.</source>
        <translation>&quot;%1&quot; n’est pas compris. Voyez &quot;help assessment&quot;.</translation>
    </message>
    <message>
        <source>An assessment is under way. Use &quot;assessment stop&quot; before the next.</source>
        <translation>Une évaluation est en cours. Employez &quot;assessment stop&quot; avant la suivante.</translation>
    </message>
    <message>
        <source>An assessment is under way: its settings stay. Use &quot;assessment start to=LEARNER&quot; alone.</source>
        <translation>Une évaluation est en cours&#xa0;: ses réglages restent. Employez &quot;assessment start to=LEARNER&quot; seul.</translation>
    </message>
    <message>
        <source>%1 begins the assessment, too.</source>
        <translation>%1 commence aussi l’évaluation.</translation>
    </message>
    <message>
        <source>The text is shown to %1.</source>
        <translation>Le texte est montré à %1.</translation>
    </message>
    <message>
        <source>The assessment is paused; &quot;assessment resume&quot; goes on.</source>
        <translation>L’évaluation est en pause&#xa0;; &quot;assessment resume&quot; la reprend.</translation>
    </message>
    <message>
        <source>The assessment goes on.</source>
        <translation>L’évaluation continue.</translation>
    </message>
    <message>
        <source>An assessment is under way: its questions stay. Use &quot;assessment stop&quot; first.</source>
        <translation>Une évaluation est en cours&#xa0;: ses questions restent. Employez d’abord &quot;assessment stop&quot;.</translation>
    </message>
    <message>
        <source>Question %1 is written: %2.</source>
        <translation>La question %1 est écrite&#xa0;: %2.</translation>
    </message>
    <message>
        <source>The assessment</source>
        <translation>Évaluation</translation>
    </message>
    <message>
        <source>The assessment has started: %1.</source>
        <translation>L’évaluation a commencé&#xa0;: %1.</translation>
    </message>
    <message>
        <source>Write a question of the next assessment.</source>
        <translation>Écrire une question de la prochaine évaluation.</translation>
    </message>
    <message>
        <source>The types are those of &quot;poll&quot;. Choices are what the options say; their number is that of the options. ANSWER is the right one, for the marks: options by their ids, a number, or words. Where several are right, &quot;|&quot; divides them. Nothing goes out before &quot;assessment start&quot;.
Examples: assessment question number text=&quot;How many legs has a spider?&quot; answer=8
assessment question multiple choices=oxygen|water|light answer=BC</source>
        <translation>Les types sont ceux de &quot;poll&quot;. choices est ce que disent les options&#xa0;; leur nombre est celui des options. ANSWER est la bonne réponse, pour la correction&#xa0;: des options par leurs identifiants, un nombre ou des mots. Quand plusieurs sont justes, &quot;|&quot; les sépare. Rien ne part avant &quot;assessment start&quot;.
Exemples&#xa0;: assessment question number text=&quot;Combien de pattes a une araignée&#xa0;?&quot; answer=8
assessment question multiple choices=oxygène|eau|lumière answer=BC</translation>
    </message>
    <message>
        <source>Begin an assessment of the questions written.</source>
        <translation>Commencer une évaluation avec les questions écrites.</translation>
    </message>
    <message>
        <source>For one learner or, without &quot;to&quot;, for the class and whoever joins it. Each learner gets the questions as he asks for them, at his own pace. While one is under way for single learners, &quot;to&quot; adds another. Without &quot;time&quot; it takes as long as it takes. The questions stay for another start, until the first of a new set is written. The settings, and what they are unless told otherwise: skip=no, questions may be skipped; navigate=no, one may go back to questions; resubmit=yes, answers may be changed; summary=no, the device shows a summary at the end.</source>
        <translation>Pour un élève ou, sans &quot;to&quot;, pour la classe et quiconque la rejoint. Chacun reçoit les questions quand il les demande, à son rythme. Tant qu’une évaluation est en cours pour certains, &quot;to&quot; en ajoute un autre. Sans &quot;time&quot;, elle dure ce qu’elle dure. Les questions restent pour un autre départ, jusqu’à ce que la première d’une nouvelle série soit écrite. Les réglages, et leur valeur par défaut&#xa0;: skip=no, on peut sauter des questions&#xa0;; navigate=no, on peut revenir à des questions&#xa0;; resubmit=yes, on peut changer ses réponses&#xa0;; summary=no, l’appareil montre un bilan à la fin.</translation>
    </message>
    <message>
        <source>Show the results so far, by learner and by question.</source>
        <translation>Montrer les résultats jusqu’ici, par élève et par question.</translation>
    </message>
    <message>
        <source>A mark stands before each answer that has a right one.</source>
        <translation>Une marque précède chaque réponse qui en a une juste.</translation>
    </message>
    <message>
        <source>Show a text on the learners&apos; devices.</source>
        <translation>Montrer un texte sur les appareils des élèves.</translation>
    </message>
    <message>
        <source>Also without an assessment.</source>
        <translation>Aussi sans évaluation.</translation>
    </message>
    <message>
        <source>Let the learners review their questions.</source>
        <translation>Faire revoir leurs questions aux élèves.</translation>
    </message>
    <message>
        <source>Let the learners pause.</source>
        <translation>Mettre les élèves en pause.</translation>
    </message>
    <message>
        <source>Let the learners go on.</source>
        <translation>Faire continuer les élèves.</translation>
    </message>
    <message>
        <source>End the assessment and show its results.</source>
        <translation>Terminer l’évaluation et montrer ses résultats.</translation>
    </message>
    <message>
        <source>The card</source>
        <translation>Carte</translation>
    </message>
    <message>
        <source>That is no address of a picture, such as https://... or data:image/...</source>
        <translation>Ce n’est pas l’adresse d’une image, comme https://... ou data:image/...</translation>
    </message>
    <message>
        <source>Card %1 is &quot;%2&quot;.</source>
        <translation>La carte %1 est &quot;%2&quot;.</translation>
    </message>
    <message>
        <source>There is no card %1: the lesson has %2.</source>
        <translation>Il n’y a pas de carte %1&#xa0;: le cours a %2.</translation>
    </message>
    <message>
        <source>Resource %1, for learners at %2</source>
        <translation>Ressource %1, pour les élèves à %2</translation>
    </message>
    <message>
        <source>PNG, %1 bytes</source>
        <translation>PNG, %1 octets</translation>
    </message>
    <message>
        <source>The lesson has no cards. &quot;deck add&quot; adds one.</source>
        <translation>Le cours n’a pas de cartes. &quot;deck add&quot; en ajoute une.</translation>
    </message>
    <message>
        <source>Card</source>
        <translation>Carte</translation>
    </message>
    <message>
        <source>Picture</source>
        <translation>Image</translation>
    </message>
    <message>
        <source>Show a PNG picture on the learners&apos; devices.</source>
        <translation>Montrer une image PNG sur les appareils des élèves.</translation>
    </message>
    <message>
        <source>A small picture travels in the message; one of more than 64 KiB is uploaded before.</source>
        <translation>Une petite image voyage dans le message&#xa0;; au-delà de 64 Kio, elle est téléversée d’abord.</translation>
    </message>
    <message>
        <source>Show a picture that devices load from an address.</source>
        <translation>Montrer une image que les appareils chargent d’une adresse.</translation>
    </message>
    <message>
        <source>Upload a picture and show it by its address.</source>
        <translation>Téléverser une image et la montrer par son adresse.</translation>
    </message>
    <message>
        <source>Store a file at the service and print its address.</source>
        <translation>Déposer un fichier au service et afficher son adresse.</translation>
    </message>
    <message>
        <source>List the cards of the lesson.</source>
        <translation>Lister les cartes du cours.</translation>
    </message>
    <message>
        <source>They are what the remote control goes through, and pushes to the learners.</source>
        <translation>C’est ce que la télécommande parcourt et envoie aux élèves.</translation>
    </message>
    <message>
        <source>Add a PNG picture to the lesson&apos;s cards.</source>
        <translation>Ajouter une image PNG aux cartes du cours.</translation>
    </message>
    <message>
        <source>Upload a picture and add it by its address.</source>
        <translation>Téléverser une image et l’ajouter par son adresse.</translation>
    </message>
    <message>
        <source>Add a picture that devices load from an address.</source>
        <translation>Ajouter une image que les appareils chargent d’une adresse.</translation>
    </message>
    <message>
        <source>Go to the next card.</source>
        <translation>Passer à la carte suivante.</translation>
    </message>
    <message>
        <source>Go to the card before.</source>
        <translation>Revenir à la carte précédente.</translation>
    </message>
    <message>
        <source>Go to a card.</source>
        <translation>Aller à une carte.</translation>
    </message>
    <message>
        <source>Show the current card on the learners&apos; devices.</source>
        <translation>Montrer la carte actuelle sur les appareils des élèves.</translation>
    </message>
    <message>
        <source>The remote control has been told.</source>
        <translation>La télécommande est prévenue.</translation>
    </message>
    <message>
        <source>The card&apos;s number goes from 1 to the number of cards, which is at most %1.</source>
        <translation>Le numéro de la carte va de 1 au nombre de cartes, au plus %1.</translation>
    </message>
    <message>
        <source>A message of type %1 is published to %2.</source>
        <translation>Un message de type %1 est publié à %2.</translation>
    </message>
    <message>
        <source>A ping was sent on the live channel.</source>
        <translation>Un ping a été envoyé sur le canal direct.</translation>
    </message>
    <message>
        <source>The lesson is called &quot;%1&quot;.</source>
        <translation>Le cours s’appelle &quot;%1&quot;.</translation>
    </message>
    <message>
        <source>The learners&apos; devices are locked; &quot;unlock&quot; frees them.</source>
        <translation>Les appareils des élèves sont verrouillés&#xa0;; &quot;unlock&quot; les libère.</translation>
    </message>
    <message>
        <source>The learners&apos; devices are not locked.</source>
        <translation>Les appareils des élèves ne sont pas verrouillés.</translation>
    </message>
    <message>
        <source>The learners&apos; devices expect something large.</source>
        <translation>Les appareils des élèves attendent quelque chose de volumineux.</translation>
    </message>
    <message>
        <source>Tell the remote control of some lesson.</source>
        <translation>Annoncer un cours quelconque à la télécommande.</translation>
    </message>
    <message>
        <source>By itself it is told of this one.</source>
        <translation>Celui-ci lui est annoncé tout seul.</translation>
    </message>
    <message>
        <source>Tell the remote control which card is shown.</source>
        <translation>Dire à la télécommande quelle carte est montrée.</translation>
    </message>
    <message>
        <source>Tell the remote control that the presenter is here.</source>
        <translation>Dire à la télécommande que l’enseignant est là.</translation>
    </message>
    <message>
        <source>Publish a message of your own.</source>
        <translation>Publier un message à vous.</translation>
    </message>
    <message>
        <source>An ADDRESS that begins with &quot;.&quot; is below the session: .learner, .controller, .user.DEVICE. Example: publish .learner heavy &apos;&quot;&quot;&apos;</source>
        <translation>Une ADDRESS qui commence par &quot;.&quot; est sous la session&#xa0;: .learner, .controller, .user.DEVICE. Exemple&#xa0;: publish .learner heavy &apos;&quot;&quot;&apos;</translation>
    </message>
    <message>
        <source>Send a ping on the live channel.</source>
        <translation>Envoyer un ping sur le canal direct.</translation>
    </message>
    <message>
        <source>Name the lesson, for the remote control.</source>
        <translation>Nommer le cours, pour la télécommande.</translation>
    </message>
    <message>
        <source>Without a name of its own it is called as its script.</source>
        <translation>Sans nom à lui, il s’appelle comme son script.</translation>
    </message>
    <message>
        <source>Cover the learners&apos; devices with a text.</source>
        <translation>Couvrir les appareils des élèves d’un texte.</translation>
    </message>
    <message>
        <source>Until &quot;unlock&quot;, or until the next poll starts.</source>
        <translation>Jusqu’à &quot;unlock&quot;, ou jusqu’au prochain sondage.</translation>
    </message>
    <message>
        <source>Tell the learners&apos; devices that something large is coming.</source>
        <translation>Dire aux appareils des élèves que quelque chose de volumineux arrive.</translation>
    </message>
    <message>
        <source>This needs a login. Use &quot;login&quot; first.</source>
        <translation>Il faut être connecté. Employez d’abord &quot;login&quot;.</translation>
    </message>
    <message>
        <source>There is no session. Use &quot;session start&quot; first.</source>
        <translation>Il n’y a pas de session. Employez d’abord &quot;session start&quot;.</translation>
    </message>
    <message>
        <source>The live channel is closed. Use &quot;session reconnect&quot; to open it again.</source>
        <translation>Le canal direct est fermé. &quot;session reconnect&quot; le rouvre.</translation>
    </message>
    <message>
        <source>No poll is running. Use &quot;poll TYPE&quot; to start one.</source>
        <translation>Aucun sondage n’est en cours. &quot;poll TYPE&quot; en lance un.</translation>
    </message>
    <message>
        <source>No poll has been put. Use &quot;poll TYPE&quot;.</source>
        <translation>Aucun sondage n’a été fait. Employez &quot;poll TYPE&quot;.</translation>
    </message>
    <message>
        <source>No assessment is under way. Use &quot;assessment start&quot;.</source>
        <translation>Aucune évaluation n’est en cours. Employez &quot;assessment start&quot;.</translation>
    </message>
    <message>
        <source>There has been no assessment. Use &quot;assessment start&quot;.</source>
        <translation>Il n’y a pas eu d’évaluation. Employez &quot;assessment start&quot;.</translation>
    </message>
    <message>
        <source>There are no questions. Use &quot;assessment question&quot; first.</source>
        <translation>Il n’y a pas de questions. Employez d’abord &quot;assessment question&quot;.</translation>
    </message>
    <message>
        <source>The lesson has no cards. Use &quot;deck add&quot;.</source>
        <translation>Le cours n’a pas de cartes. Employez &quot;deck add&quot;.</translation>
    </message>
    <message>
        <source>No session is live. Use &quot;session start&quot; first.</source>
        <translation>Aucune session n’est ouverte. Employez d’abord &quot;session start&quot;.</translation>
    </message>
    <message>
        <source>the live channel</source>
        <translation>le canal direct</translation>
    </message>
    <message>
        <source>The wait for the live channel was given up.</source>
        <translation>L’attente du canal direct a été abandonnée.</translation>
    </message>
    <message>
        <source>%1 was given up.</source>
        <translation>%1&#xa0;: abandon.</translation>
    </message>
    <message>
        <source>The live channel to %1 did not open. Check that the network lets it through, or name other transports with --transports.</source>
        <translation>Le canal direct vers %1 ne s’est pas ouvert. Vérifiez que le réseau le laisse passer, ou nommez d’autres transports avec --transports.</translation>
    </message>
    <message>
        <source>%1 failed: no classroom service answers at %2. Check --server, and that the service is running.</source>
        <translation>%1&#xa0;: échec, aucun service de classe ne répond à %2. Vérifiez --server, et que le service tourne.</translation>
    </message>
    <message>
        <source>%1 failed (%2). The certificate of %3 is signed by an authority that this machine does not know: install the authority&apos;s certificate.</source>
        <translation>%1&#xa0;: échec (%2). Le certificat de %3 est signé par une autorité que cette machine ne connaît pas&#xa0;: installez le certificat de l’autorité.</translation>
    </message>
    <message>
        <source>%1 failed. %2 %3</source>
        <translation>%1&#xa0;: échec. %2 %3</translation>
    </message>
    <message>
        <source>%1 was refused (%2). %3</source>
        <translation>%1&#xa0;: refus (%2). %3</translation>
    </message>
    <message>
        <source>&quot;help TOPIC&quot; says what its commands do (&quot;help polls&quot;), &quot;help COMMAND&quot; how (&quot;help poll stop&quot;).</source>
        <translation>&quot;help TOPIC&quot; dit ce que font ses commandes (&quot;help polls&quot;), &quot;help COMMAND&quot; comment (&quot;help poll stop&quot;).</translation>
    </message>
    <message>
        <source>There is no command &quot;%1&quot;.%2 There are: %3.</source>
        <translation>Il n’y a pas de commande &quot;%1&quot;.%2 Il y a&#xa0;: %3.</translation>
    </message>
    <message>
        <source>There is no command &quot;%1&quot;.%2 &quot;help&quot; lists all.</source>
        <translation>Il n’y a pas de commande &quot;%1&quot;.%2 &quot;help&quot; les donne toutes.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a whole number.</source>
        <translation>&quot;%1&quot; n’est pas un nombre entier.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a number of seconds.</source>
        <translation>&quot;%1&quot; n’est pas un nombre de secondes.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is neither a whole number nor &quot;all&quot;.</source>
        <translation>&quot;%1&quot; n’est ni un nombre entier ni &quot;all&quot;.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not understood.%2</source>
        <translation>&quot;%1&quot; n’est pas compris.%2</translation>
    </message>
    <message>
        <source>There is no poll type &quot;%1&quot;.%2 The types are: %3.</source>
        <translation>Il n’y a pas de type de sondage &quot;%1&quot;.%2 Les types sont&#xa0;: %3.</translation>
    </message>
    <message>
        <source>Usage: %1</source>
        <translation>Usage&#xa0;: %1</translation>
    </message>
    <message>
        <source>Logging in and out</source>
        <translation>Connexion et déconnexion</translation>
    </message>
    <message>
        <source>Sessions and who is in them</source>
        <translation>Les sessions et qui y est</translation>
    </message>
    <message>
        <source>Polls</source>
        <translation>Sondages</translation>
    </message>
    <message>
        <source>Pictures and the cards of the lesson</source>
        <translation>Les images et les cartes du cours</translation>
    </message>
    <message>
        <source>Learners&apos; devices and the remote control</source>
        <translation>Les appareils des élèves et la télécommande</translation>
    </message>
    <message>
        <source>Assessments</source>
        <translation>Évaluations</translation>
    </message>
    <message>
        <source>The steps of a lesson</source>
        <translation>Les étapes d’un cours</translation>
    </message>
    <message>
        <source>This program</source>
        <translation>Ce programme</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 sur %2</translation>
    </message>
    <message>
        <source>Total: %1, %2, %3, %4, %5.</source>
        <translation>Total&#xa0;: %1, %2, %3, %4, %5.</translation>
    </message>
    <message>
        <source>Poll</source>
        <translation>Sondage</translation>
    </message>
    <message>
        <source>Answers</source>
        <translation>Réponses</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Juste</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Temps</translation>
    </message>
    <message>
        <source>Most frequent</source>
        <translation>Le plus fréquent</translation>
    </message>
    <message>
        <source>The session is stopped.</source>
        <translation>La session est arrêtée.</translation>
    </message>
    <message>
        <source>Logging out</source>
        <translation>Déconnexion</translation>
    </message>
    <message>
        <source>Try it again.</source>
        <translation>Réessayez.</translation>
    </message>
    <message>
        <source>%1 cannot be read: %2.</source>
        <translation>%1 ne peut pas être lu&#xa0;: %2.</translation>
    </message>
    <message>
        <source>%1 is larger than 16 MiB.</source>
        <translation>%1 dépasse 16 Mio.</translation>
    </message>
    <message>
        <source>%1 is not a PNG file. Others can be uploaded: see &quot;help card&quot;.</source>
        <translation>%1 n’est pas un fichier PNG. D’autres peuvent être téléversés&#xa0;: voyez &quot;help card&quot;.</translation>
    </message>
    <message>
        <source>The upload of %1</source>
        <translation>Téléversement de %1</translation>
    </message>
    <message>
        <source>Check that you are logged in and that the file is not too large for the service.</source>
        <translation>Vérifiez que vous êtes connecté et que le fichier n’est pas trop grand pour le service.</translation>
    </message>
    <message>
        <source>%1 was uploaded, but the service gave no id for it.</source>
        <translation>%1 a été téléversé, mais le service n’a pas donné d’identifiant.</translation>
    </message>
    <message>
        <source>%1 of %2 learners are here</source>
        <translation>%1 élèves sur %2 sont là</translation>
    </message>
    <message>
        <source>%1 of %2 answers have come</source>
        <translation>%1 réponses sur %2 sont arrivées</translation>
    </message>
    <message>
        <source>%1; none yet from %2</source>
        <translation>%1&#xa0;; aucune encore de %2</translation>
    </message>
    <message>
        <source>%1 of %2 learners have finished</source>
        <translation>%1 élèves sur %2 ont fini</translation>
    </message>
    <message>
        <source>%1; not yet %2</source>
        <translation>%1&#xa0;; pas encore %2</translation>
    </message>
    <message>
        <source>The wait was given up: %1.</source>
        <translation>L’attente a été abandonnée&#xa0;: %1.</translation>
    </message>
    <message>
        <source>The session was lost while waiting: %1.</source>
        <translation>La session a été perdue pendant l’attente&#xa0;: %1.</translation>
    </message>
    <message>
        <source>After %1, %2.</source>
        <translation>Après %1, %2.</translation>
    </message>
    <message>
        <source>Expected otherwise: %1.</source>
        <translation>Contrairement à l’attendu&#xa0;: %1.</translation>
    </message>
    <message>
        <source>As expected: %1.</source>
        <translation>Comme attendu&#xa0;: %1.</translation>
    </message>
    <message>
        <source>A pause of %1</source>
        <translation>Une pause de %1</translation>
    </message>
    <message>
        <source>Paused for %1.</source>
        <translation>Pause de %1.</translation>
    </message>
    <message>
        <source>The pause was cut short.</source>
        <translation>La pause a été écourtée.</translation>
    </message>
    <message>
        <source>Wait until N learners are here.</source>
        <translation>Attendre que N élèves soient là.</translation>
    </message>
    <message>
        <source>For a minute, unless told otherwise here or by &quot;set wait-limit&quot;.</source>
        <translation>Pendant une minute, sauf indication contraire ici ou par &quot;set wait-limit&quot;.</translation>
    </message>
    <message>
        <source>Wait until N answers have come, or those of all learners.</source>
        <translation>Attendre N réponses, ou celles de tous les élèves.</translation>
    </message>
    <message>
        <source>Wait until N learners, or all, have finished the assessment.</source>
        <translation>Attendre que N élèves, ou tous, aient fini l’évaluation.</translation>
    </message>
    <message>
        <source>Fail unless N learners are here.</source>
        <translation>Échouer si N élèves ne sont pas là.</translation>
    </message>
    <message>
        <source>Fail unless the last poll has N answers, or those of all learners.</source>
        <translation>Échouer si le dernier sondage n’a pas N réponses, ou celles de tous.</translation>
    </message>
    <message>
        <source>Fail unless N learners, or all, have finished the assessment.</source>
        <translation>Échouer si N élèves, ou tous, n’ont pas fini l’évaluation.</translation>
    </message>
    <message>
        <source>Print a line.</source>
        <translation>Afficher une ligne.</translation>
    </message>
    <message>
        <source>Print a heading.</source>
        <translation>Afficher un titre.</translation>
    </message>
    <message>
        <source>Do nothing for a while.</source>
        <translation>Ne rien faire un moment.</translation>
    </message>
    <message>
        <source>There is no transport &quot;%1&quot;.%2 There are %3.</source>
        <translation>Il n’y a pas de transport &quot;%1&quot;.%2 Il y a %3.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is %2 now.</source>
        <translation>&quot;%1&quot; est maintenant %2.</translation>
    </message>
    <message>
        <source>There is neither a command nor a topic &quot;%1&quot;. &quot;help&quot; lists them.</source>
        <translation>Il n’y a ni commande ni sujet &quot;%1&quot;. &quot;help&quot; les donne.</translation>
    </message>
    <message>
        <source>Change a setting.</source>
        <translation>Changer un réglage.</translation>
    </message>
    <message>
        <source>transports NAME ...: those to use for the next session instead of the tenant&apos;s.
open-limit SECONDS: how long a transport may take to open; 0 is no limit.
wait-limit SECONDS: how long a &quot;wait&quot; lasts when it does not say.</source>
        <translation>transports NAME ...&#xa0;: ceux de la prochaine session au lieu de ceux prescrits.
open-limit SECONDS&#xa0;: le temps qu’un transport peut prendre pour s’ouvrir&#xa0;; 0&#xa0;: sans limite.
wait-limit SECONDS&#xa0;: la durée d’un &quot;wait&quot; quand il ne la dit pas.</translation>
    </message>
    <message>
        <source>List the commands, or explain a topic or one of them.</source>
        <translation>Lister les commandes, ou expliquer un sujet ou l’une d’elles.</translation>
    </message>
    <message>
        <source>End the lesson: stop the session, log out, leave.</source>
        <translation>Terminer le cours&#xa0;: arrêter la session, se déconnecter, partir.</translation>
    </message>
    <message>
        <source>Ctrl-D does so, too.</source>
        <translation>Ctrl-D le fait aussi.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not understood here. See &quot;help poll&quot;.</source>
        <translation>&quot;%1&quot; n’est pas compris ici. Voyez &quot;help poll&quot;.</translation>
    </message>
    <message>
        <source>The poll</source>
        <translation>Sondage</translation>
    </message>
    <message>
        <source>Poll %1 has started: %2.</source>
        <translation>Le sondage %1 a commencé&#xa0;: %2.</translation>
    </message>
    <message>
        <source>the end of the poll</source>
        <translation>la fin du sondage</translation>
    </message>
    <message>
        <source>The wait was given up: the poll stops all the same.</source>
        <translation>L’attente a été abandonnée&#xa0;: le sondage s’arrête tout de même.</translation>
    </message>
    <message>
        <source>The poll is paused; &quot;poll resume&quot; goes on.</source>
        <translation>Le sondage est en pause&#xa0;; &quot;poll resume&quot; le reprend.</translation>
    </message>
    <message>
        <source>The poll goes on.</source>
        <translation>Le sondage continue.</translation>
    </message>
    <message>
        <source>  No answer yet from %1.</source>
        <translation>  Pas encore de réponse de %1.</translation>
    </message>
    <message>
        <source>The learners are shown how poll %1 came out.</source>
        <translation>Les élèves voient le résultat du sondage %1.</translation>
    </message>
    <message>
        <source>Saving</source>
        <translation>Enregistrement</translation>
    </message>
    <message>
        <source>The results are saved in %1.</source>
        <translation>Les résultats sont enregistrés dans %1.</translation>
    </message>
    <message>
        <source>Put a poll to the learners.</source>
        <translation>Soumettre un sondage aux élèves.</translation>
    </message>
    <message>
        <source>TYPE: true-false, yes-no-other, multiple, scale, sort, text, word-seed, number, creative, math-formula. ORDINAL labels the options: true-false, yes-no, yes-no-maybe, yes-no-unsure, yes-no-other, alpha-upper, alpha-lower, number, agreement, confidence, generic. OPTIONS is their number; of a number poll, its decimals. EXTRA is the number of correct options of a multiple choice. TEXT is the question, and the choices are what its options say: devices show them. ANSWER is what is right, for the marks; &quot;help assessment question&quot; tells more. What is left out is what the type usually has. A picture is a PNG file that travels in the message, a file that is uploaded, or an address from which devices can load it. A poll that runs is stopped first.
Examples: poll true-false    poll multiple alpha-upper 5 2    poll number 2
poll scale agreement 5 picture images/leaf.png</source>
        <translation>TYPE&#xa0;: true-false, yes-no-other, multiple, scale, sort, text, word-seed, number, creative, math-formula. ORDINAL étiquette les options&#xa0;: true-false, yes-no, yes-no-maybe, yes-no-unsure, yes-no-other, alpha-upper, alpha-lower, number, agreement, confidence, generic. OPTIONS est leur nombre&#xa0;; pour un nombre (number), celui des décimales. EXTRA est le nombre d’options justes d’un choix multiple. TEXT est la question, et choices ce que disent ses options&#xa0;: les appareils les montrent. ANSWER est ce qui est juste, pour la correction&#xa0;; &quot;help assessment question&quot; en dit plus. Ce qui manque est ce que le type a d’habitude. Une image est un fichier PNG qui voyage dans le message, un fichier téléversé, ou une adresse d’où les appareils la chargent. Un sondage en cours est arrêté d’abord.
Exemples&#xa0;: poll true-false    poll multiple alpha-upper 5 2    poll number 2
poll scale agreement 5 picture images/leaf.png</translation>
    </message>
    <message>
        <source>Stop the poll and show its final tally.</source>
        <translation>Arrêter le sondage et montrer son décompte final.</translation>
    </message>
    <message>
        <source>With SECONDS, when they are over: the learners&apos; devices count them down.</source>
        <translation>Avec SECONDS, quand elles sont passées&#xa0;: les appareils des élèves les décomptent.</translation>
    </message>
    <message>
        <source>Show the answers so far and whose are missing.</source>
        <translation>Montrer les réponses jusqu’ici, et celles qui manquent.</translation>
    </message>
    <message>
        <source>Show the learners how the poll came out.</source>
        <translation>Montrer aux élèves le résultat du sondage.</translation>
    </message>
    <message>
        <source>Each gets the counts on his device and, where an answer is right, whether his is.</source>
        <translation>Chacun reçoit les comptes sur son appareil et, quand une réponse est juste, si c’est la sienne.</translation>
    </message>
    <message>
        <source>Show a table of all polls so far, and what assessments came to.</source>
        <translation>Montrer un tableau de tous les sondages, et ce qu’ont donné les évaluations.</translation>
    </message>
    <message>
        <source>When the session ends, it is shown once more if something has changed.</source>
        <translation>À la fin de la session, il est montré encore une fois si quelque chose a changé.</translation>
    </message>
    <message>
        <source>Save who was here, every question, every answer and the marks.</source>
        <translation>Enregistrer qui était là, chaque question, chaque réponse et la correction.</translation>
    </message>
    <message>
        <source>As JSON, or as a table where FILE ends in &quot;.csv&quot;.</source>
        <translation>En JSON, ou en tableau quand FILE se termine par &quot;.csv&quot;.</translation>
    </message>
    <message>
        <source>Use &quot;login&quot; again.</source>
        <translation>Employez à nouveau &quot;login&quot;.</translation>
    </message>
    <message>
        <source>Session %1 is open. Use &quot;session stop&quot; first.</source>
        <translation>La session %1 est ouverte. Employez d’abord &quot;session stop&quot;.</translation>
    </message>
    <message>
        <source>Session %1 is live. Join at %2 with %1.</source>
        <translation>La session %1 est ouverte. On la rejoint sur %2 avec %1.</translation>
    </message>
    <message>
        <source>Starting a session</source>
        <translation>Ouverture d’une session</translation>
    </message>
    <message>
        <source>Creating a session</source>
        <translation>Création d’une session</translation>
    </message>
    <message>
        <source>Session %1 is created. &quot;session live&quot; starts it.</source>
        <translation>La session %1 est créée. &quot;session live&quot; l’ouvre.</translation>
    </message>
    <message>
        <source>There is no session to take up. Use &quot;session start&quot;.</source>
        <translation>Il n’y a pas de session à reprendre. Employez &quot;session start&quot;.</translation>
    </message>
    <message>
        <source>Taking the session up</source>
        <translation>Reprise de la session</translation>
    </message>
    <message>
        <source>What was collected is still here: &quot;summary&quot; shows it, &quot;save FILE&quot; keeps it.</source>
        <translation>Ce qui a été recueilli est toujours là&#xa0;: &quot;summary&quot; le montre, &quot;save FILE&quot; le garde.</translation>
    </message>
    <message>
        <source>The live channel is open again.</source>
        <translation>Le canal direct est rouvert.</translation>
    </message>
    <message>
        <source>The connection</source>
        <translation>Liaison</translation>
    </message>
    <message>
        <source>Closing the live channel</source>
        <translation>Fermeture du canal direct</translation>
    </message>
    <message>
        <source>The live channel is closed: the learners&apos; devices say that the session has ended. &quot;session reconnect&quot; opens it again; they join again.</source>
        <translation>Le canal direct est fermé&#xa0;: les appareils des élèves disent que la session est finie. &quot;session reconnect&quot; le rouvre&#xa0;; ils la rejoignent à nouveau.</translation>
    </message>
    <message>
        <source>The question</source>
        <translation>Question</translation>
    </message>
    <message>
        <source>none</source>
        <translation>aucun</translation>
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
        <source>Session code</source>
        <translation>Code de session</translation>
    </message>
    <message>
        <source>Learners join at</source>
        <translation>On rejoint sur</translation>
    </message>
    <message>
        <source>Session token</source>
        <translation>Jeton de session</translation>
    </message>
    <message>
        <source>Collaboration server</source>
        <translation>Serveur direct</translation>
    </message>
    <message>
        <source>Transports</source>
        <translation>Transports</translation>
    </message>
    <message>
        <source>Live channel</source>
        <translation>Canal direct</translation>
    </message>
    <message>
        <source>open</source>
        <translation>ouvert</translation>
    </message>
    <message>
        <source>closed</source>
        <translation>fermé</translation>
    </message>
    <message>
        <source>Learners</source>
        <translation>Élèves</translation>
    </message>
    <message>
        <source>There is no session to stop.</source>
        <translation>Il n’y a pas de session à arrêter.</translation>
    </message>
    <message>
        <source>Stopping the session</source>
        <translation>Arrêt de la session</translation>
    </message>
    <message>
        <source>Session %1 is stopped.</source>
        <translation>La session %1 est arrêtée.</translation>
    </message>
    <message>
        <source>No learner is here.</source>
        <translation>Aucun élève n’est là.</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nom</translation>
    </message>
    <message>
        <source>Device</source>
        <translation>Appareil</translation>
    </message>
    <message>
        <source>Device id</source>
        <translation>Identifiant</translation>
    </message>
    <message>
        <source>%1 is sent away.</source>
        <translation>%1 est renvoyé.</translation>
    </message>
    <message>
        <source>Create a session and go live.</source>
        <translation>Créer une session et l’ouvrir.</translation>
    </message>
    <message>
        <source>Waits until the live channel is open: for as long as the transports may take together, or for SECONDS. Does &quot;session create&quot; and &quot;session live&quot; in one.</source>
        <translation>Attend que le canal direct soit ouvert&#xa0;: aussi longtemps que les transports peuvent prendre ensemble, ou SECONDS. Fait &quot;session create&quot; et &quot;session live&quot; en une fois.</translation>
    </message>
    <message>
        <source>Take up a session whose presenter was killed.</source>
        <translation>Reprendre une session dont le programme a été tué.</translation>
    </message>
    <message>
        <source>With the learners who are still in it, and with all that was asked and answered. FILE is the journal, where it is not the one that this program writes by itself.</source>
        <translation>Avec les élèves qui y sont encore, et avec tout ce qui a été demandé et répondu. FILE est le journal, quand ce n’est pas celui que ce programme écrit de lui-même.</translation>
    </message>
    <message>
        <source>Create a session, without starting it.</source>
        <translation>Créer une session, sans l’ouvrir.</translation>
    </message>
    <message>
        <source>Start the created session and open its live channel.</source>
        <translation>Ouvrir la session créée et son canal direct.</translation>
    </message>
    <message>
        <source>Open the live channel again.</source>
        <translation>Rouvrir le canal direct.</translation>
    </message>
    <message>
        <source>With the transports as before, or with those named.</source>
        <translation>Avec les transports d’avant, ou avec ceux nommés.</translation>
    </message>
    <message>
        <source>Close the live channel, for the learners the end of the session.</source>
        <translation>Fermer le canal direct, pour les élèves la fin de la session.</translation>
    </message>
    <message>
        <source>Show the session&apos;s code, address, transports and state.</source>
        <translation>Montrer le code, l’adresse, les transports et l’état de la session.</translation>
    </message>
    <message>
        <source>Stop the session.</source>
        <translation>Arrêter la session.</translation>
    </message>
    <message>
        <source>A poll that runs is stopped first.</source>
        <translation>Un sondage en cours est arrêté d’abord.</translation>
    </message>
    <message>
        <source>List the learners who are here.</source>
        <translation>Lister les élèves présents.</translation>
    </message>
    <message>
        <source>Send a learner&apos;s device away.</source>
        <translation>Renvoyer l’appareil d’un élève.</translation>
    </message>
    <message>
        <source>LEARNER is a name, the beginning of one, or a device id.</source>
        <translation>LEARNER est un nom, le début d’un nom, ou un identifiant d’appareil.</translation>
    </message>
    <message>
        <source>Try at once to find the way back to a lost session.</source>
        <translation>Essayer aussitôt de retrouver une session perdue.</translation>
    </message>
    <message>
        <source>By itself that is tried in between, for as long as the session may live. What is done meanwhile reaches the learners when the connection is back.</source>
        <translation>Cela s’essaie aussi tout seul, tant que la session peut vivre. Ce qui est fait entre-temps parvient aux élèves quand la liaison est rétablie.</translation>
    </message>
    <message>
        <source>The same as &quot;retry&quot;.</source>
        <translation>Comme &quot;retry&quot;.</translation>
    </message>
    <message>
        <source>Learner</source>
        <translation>Élève</translation>
    </message>
    <message>
        <source>Score</source>
        <translation>Score</translation>
    </message>
    <message>
        <source>Question</source>
        <translation>Question</translation>
    </message>
    <message>
        <source>%1, %2 of %3 right.</source>
        <translation>%1, %2 sur %3 justes.</translation>
    </message>
    <message>
        <source>Poll %1: %2</source>
        <translation>Sondage %1&#xa0;: %2</translation>
    </message>
    <message>
        <source>Assessment</source>
        <translation>Évaluation</translation>
    </message>
    <message>
        <source>%1 of %2 finished</source>
        <translation>%1 sur %2 ont fini</translation>
    </message>
    <message>
        <source>Lesson</source>
        <translation>Cours</translation>
    </message>
    <message numerus="yes">
        <source>%n correct</source>
        <translation>
            <numerusform>%n juste</numerusform>
            <numerusform>%n justes</numerusform>
        </translation>
    </message>
    <message>
        <source>with a picture</source>
        <translation>avec une image</translation>
    </message>
    <message>
        <source>paused</source>
        <translation>en pause</translation>
    </message>
    <message>
        <source>stops in %1 s</source>
        <translation>s’arrête dans %1 s</translation>
    </message>
    <message>
        <source>1 more option</source>
        <translation>1 option de plus</translation>
    </message>
    <message numerus="yes">
        <source>%n more options</source>
        <translation>
            <numerusform>%n option de plus</numerusform>
            <numerusform>%n options de plus</numerusform>
        </translation>
    </message>
    <message>
        <source>1 different answer more</source>
        <translation>1 autre réponse</translation>
    </message>
    <message numerus="yes">
        <source>%n different answers more</source>
        <translation>
            <numerusform>%n autre réponse</numerusform>
            <numerusform>%n autres réponses</numerusform>
        </translation>
    </message>
    <message>
        <source>and %1</source>
        <translation>et %1</translation>
    </message>
    <message>
        <source>No answers yet.</source>
        <translation>Pas encore de réponses.</translation>
    </message>
    <message>
        <source>%1 of %2 answered</source>
        <translation>%1 sur %2 ont répondu</translation>
    </message>
    <message>
        <source>The quotation that begins with %1 has no end.</source>
        <translation>La citation qui commence par %1 n’a pas de fin.</translation>
    </message>
    <message>
        <source> Did you mean %1?</source>
        <translation> Vouliez-vous dire %1&#xa0;?</translation>
    </message>
    <message>
        <source> or </source>
        <translation> ou </translation>
    </message>
    <message>
        <source>1 answer</source>
        <translation>1 réponse</translation>
    </message>
    <message numerus="yes">
        <source>%n answers</source>
        <translation>
            <numerusform>%n réponse</numerusform>
            <numerusform>%n réponses</numerusform>
        </translation>
    </message>
    <message>
        <source>1 card</source>
        <translation>1 carte</translation>
    </message>
    <message numerus="yes">
        <source>%n cards</source>
        <translation>
            <numerusform>%n carte</numerusform>
            <numerusform>%n cartes</numerusform>
        </translation>
    </message>
    <message>
        <source>1 decimal</source>
        <translation>1 décimale</translation>
    </message>
    <message numerus="yes">
        <source>%n decimals</source>
        <translation>
            <numerusform>%n décimale</numerusform>
            <numerusform>%n décimales</numerusform>
        </translation>
    </message>
    <message>
        <source>1 late answer</source>
        <translation>1 réponse en retard</translation>
    </message>
    <message numerus="yes">
        <source>%n late answers</source>
        <translation>
            <numerusform>%n réponse en retard</numerusform>
            <numerusform>%n réponses en retard</numerusform>
        </translation>
    </message>
    <message>
        <source>1 learner</source>
        <translation>1 élève</translation>
    </message>
    <message numerus="yes">
        <source>%n learners</source>
        <translation>
            <numerusform>%n élève</numerusform>
            <numerusform>%n élèves</numerusform>
        </translation>
    </message>
    <message>
        <source>1 option</source>
        <translation>1 option</translation>
    </message>
    <message numerus="yes">
        <source>%n options</source>
        <translation>
            <numerusform>%n option</numerusform>
            <numerusform>%n options</numerusform>
        </translation>
    </message>
    <message>
        <source>1 poll</source>
        <translation>1 sondage</translation>
    </message>
    <message numerus="yes">
        <source>%n polls</source>
        <translation>
            <numerusform>%n sondage</numerusform>
            <numerusform>%n sondages</numerusform>
        </translation>
    </message>
    <message>
        <source>1 question</source>
        <translation>1 question</translation>
    </message>
    <message numerus="yes">
        <source>%n questions</source>
        <translation>
            <numerusform>%n question</numerusform>
            <numerusform>%n questions</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 and %2 more</source>
        <translation>%1 et %2 de plus</translation>
    </message>
    <message>
        <source>1 second</source>
        <translation>1 seconde</translation>
    </message>
    <message>
        <source>%1 seconds</source>
        <translation>%1 secondes</translation>
    </message>
    <message>
        <source>The text is shown to the class.</source>
        <translation>Le texte est montré à la classe.</translation>
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
        <translation>  --server URL        l’adresse du service de classe
  --user USER         qui &quot;login&quot; connecte quand il ne nomme personne
  --password TEXT     son mot de passe&#xa0;; mieux vaut la variable d’environnement
                      CALYX_PASSWORD, car d’autres peuvent voir une ligne de commande
  --script FILE       donner le cours de FILE&#xa0;; sinon, les commandes viennent du clavier ou,
                      sans terminal, de l’entrée standard, ligne par ligne
  --check FILE        dire ce qui ne va pas dans le cours de FILE, et ne rien faire d’autre
  --transports LIST   les transports à employer au lieu de ceux prescrits, dans cet ordre,
                      séparés par des virgules&#xa0;: websocket, xhr-streaming, xhr-polling
  --open-limit SECONDS
                      le temps qu’un transport peut prendre pour s’ouvrir avant qu’on essaie
                      le suivant (10&#xa0;; 0&#xa0;: sans limite)
  --journal FILE      consigner le cours dans FILE à mesure, pour &quot;session resume&quot; après une
                      panne&#xa0;; noms et réponses y figurent. Un cours tapé le fait de lui-même,
                      dans un fichier à lui qui disparaît avec le cours&#xa0;; &quot;none&quot;&#xa0;: aucun
  --quiet             n’afficher que les erreurs et les résultats, pas le déroulement
  --verbose           afficher les diagnostics de la bibliothèque sur l’erreur standard&#xa0;; ils
                      contiennent des jetons
  --version           afficher la version
  --help              afficher ce texte&#xa0;; &quot;help&quot; à l’invite explique les commandes</translation>
    </message>
    <message>
        <source>--%1 takes a file.</source>
        <translation>--%1 prend un fichier.</translation>
    </message>
    <message>
        <source>The wait was given up. The way back is still looked for; &quot;retry&quot; tries at once.</source>
        <translation>L’attente a été abandonnée. La recherche continue&#xa0;; &quot;retry&quot; essaie aussitôt.</translation>
    </message>
    <message>
        <source>Trying again now.</source>
        <translation>Nouvel essai en cours.</translation>
    </message>
    <message>
        <source>The connection is not lost: the live channel is open.</source>
        <translation>La liaison n’est pas perdue&#xa0;: le canal direct est ouvert.</translation>
    </message>
</context>
</TS>
